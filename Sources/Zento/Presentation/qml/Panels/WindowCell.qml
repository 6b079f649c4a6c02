import QtQuick
import QtQuick.Templates as T
import Zento

T.AbstractButton {
    id: cell

    required property int index
    required property var windowId
    required property string application
    required property string title
    required property var thumbnail
    property int pictures: 0 // of it so far: the address of each is another one

    implicitHeight: 212
    onThumbnailChanged: ++pictures
    focusPolicy: Qt.StrongFocus
    text: title
    Accessible.role: Accessible.Button
    Accessible.name: title.length > 0 ? title : application
    Accessible.description: application
    Accessible.onPressAction: if (cell.enabled) cell.clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    background: Rectangle {
        radius: 14
        color: cell.hovered || cell.visualFocus ? Theme.overlayHover : "transparent"
        border.width: cell.hovered || cell.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Rectangle {
            x: 10
            y: 10
            width: parent.width - 20
            height: 148
            radius: 8
            color: Theme.well
            border.width: 1
            border.color: Theme.lineStrong
            Image {
                anchors.fill: parent
                anchors.margins: 1
                fillMode: Image.PreserveAspectFit
                cache: false
                source: "image://window/" + cell.windowId + "/" + cell.pictures
                Accessible.ignored: true
            }
        }
        Label {
            x: 12
            y: 166
            width: parent.width - 24
            text: cell.title.length > 0 ? cell.title : cell.application
            weight: 500
            Accessible.ignored: true
        }
        Caption {
            x: 12
            y: 186
            width: parent.width - 24
            text: cell.application
            Accessible.ignored: true
        }
    }
}
