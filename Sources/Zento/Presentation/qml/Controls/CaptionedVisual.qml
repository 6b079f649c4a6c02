import QtQuick
import QtQuick.Templates as T
import Zento

// A tile with its name below: pointers and card designs.
Item {
    id: tile

    required property T.AbstractButton button
    required property var entry
    property real pictureHeight: 48
    default property alias content: picture.data

    anchors.fill: parent
    Item {
        id: picture

        width: parent.width
        height: tile.pictureHeight
    }
    Caption {
        anchors.horizontalCenter: parent.horizontalCenter
        y: tile.pictureHeight + 4
        text: tile.entry.name
        color: tile.button.checked ? Theme.text : Theme.textTertiary
        weight: tile.button.checked ? 500 : 400
        Accessible.ignored: true
    }
}
