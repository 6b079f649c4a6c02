import QtQuick
import Zento

// A recording's picture, rounded; an icon while there is none.
Item {
    id: picture

    property string path
    property string version: "raw" // or "film?" and a number: of what was exported, anew with each
    property real radius: 6

    Rectangle {
        anchors.fill: parent
        radius: picture.radius
        color: Theme.well
        visible: image.status !== Image.Ready
        Icon {
            anchors.centerIn: parent
            name: "film"
            size: Theme.sizeIconSmall
            color: Theme.textTertiary
        }
    }
    Image {
        id: image

        anchors.fill: parent
        asynchronous: true
        sourceSize: Qt.size(picture.width, picture.height)
        source: picture.path.length > 0
            ? "image://recording/" + picture.radius * Screen.devicePixelRatio + "/"
                + encodeURIComponent(picture.path) + "/" + picture.version
            : ""
        Accessible.ignored: true
    }
}
