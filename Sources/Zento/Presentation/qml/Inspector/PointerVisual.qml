import QtQuick
import Zento

CaptionedVisual {
    id: tile

    readonly property bool isDrawn: entry.value === "arrow" || entry.value === "hand"

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusControl
        color: tile.button.checked ? Theme.accentSoft : tile.button.hovered ? Theme.controlHover : Theme.control
        border.width: tile.button.checked ? 2 : 0
        border.color: Theme.accent
    }
    Image {
        anchors.fill: parent
        visible: tile.isDrawn
        asynchronous: true
        sourceSize: Qt.size(width, height)
        source: tile.isDrawn ? "image://swatch/0/pointer/" + tile.entry.value : ""
        Accessible.ignored: true
    }
    Rectangle {
        anchors.centerIn: parent
        visible: tile.entry.value === "circle"
        width: 24
        height: 24
        radius: 12
        color: Qt.rgba(1, 1, 1, 0.9)
        border.width: 1.5
        border.color: Qt.rgba(0, 0, 0, 0.3)
    }
    Row {
        anchors.centerIn: parent
        visible: tile.entry.value === "hidden"
        spacing: 4
        Repeater {
            model: 4
            delegate: Rectangle {
                width: 3
                height: 1.5
                color: Theme.textTertiary
            }
        }
    }
}
