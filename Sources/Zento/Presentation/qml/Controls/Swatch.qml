import QtQuick
import QtQuick.Templates as T
import Zento

// A picture drawn by the renderer, with rounded corners and the ring of what is chosen.
Item {
    id: swatch

    property string address // behind "image://swatch/RADIUS/"
    property real radius: Theme.radiusControl
    property bool chosen: false
    readonly property real density: Screen.devicePixelRatio

    Rectangle {
        anchors.fill: parent
        radius: swatch.radius
        color: Theme.control
        visible: picture.status !== Image.Ready
    }
    Image {
        id: picture

        anchors.fill: parent
        asynchronous: true
        sourceSize: Qt.size(swatch.width, swatch.height)
        source: swatch.address.length > 0
            ? "image://swatch/" + swatch.radius * swatch.density + "/" + swatch.address : ""
        Accessible.ignored: true
    }
    Rectangle {
        anchors.fill: parent
        radius: swatch.radius
        color: "transparent"
        border.width: 1
        border.color: Qt.rgba(0.5, 0.52, 0.59, 0.28)
        visible: !swatch.chosen
    }
    Rectangle {
        anchors.fill: parent
        anchors.margins: -4
        radius: swatch.radius + 4
        color: "transparent"
        border.width: 2
        border.color: Theme.accent
        visible: swatch.chosen
    }
}
