import QtQuick
import Zento

// One zoom of the lane, to look at.
Item {
    id: block

    property var zoom
    property bool isHovered: false
    property bool isFocused: false
    property bool isLifted: false

    Rectangle {
        anchors.fill: parent
        visible: block.zoom.enabled
        radius: 6
        color: Qt.rgba(Theme.accentFill.r, Theme.accentFill.g, Theme.accentFill.b, 0.28 + 0.72 * block.zoom.tint)
        border.width: 1
        border.color: block.isHovered || block.isLifted ? Theme.accent : Theme.laneZoom
    }
    DashedFrame {
        anchors.fill: parent
        visible: !block.zoom.enabled
        radius: 6
        color: Theme.textTertiary
    }
    Row {
        id: label

        anchors.verticalCenter: parent.verticalCenter
        x: block.width < 72 ? Math.max(2, Math.min(10, (block.width - width) / 2)) : 10
        spacing: 6
        // A level that is cut off says a wrong one.
        visible: block.width >= 40 && level.implicitWidth + 4 <= block.width
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            visible: block.zoom.edited && !block.zoom.added && block.width >= level.implicitWidth + 24
            width: 6
            height: 6
            radius: 3
            color: level.color
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: block.zoom.added && block.width >= level.implicitWidth + 30
            name: "plus"
            size: 12
            color: level.color
        }
        Label {
            id: level

            text: block.zoom.zoom + "×"
            type: Theme.timeType
            color: block.zoom.enabled ? Theme.inkOnAccentFill : Theme.textTertiary
            Accessible.ignored: true
        }
        Label {
            visible: block.width >= 72 && text.length > 0
            width: Math.max(0, Math.min(implicitWidth, block.width - x - 20))
            text: block.zoom.title
            type: Theme.labelType
            color: level.color
            Accessible.ignored: true
        }
    }
    Rectangle {
        visible: block.isHovered && block.width >= 20
        x: parent.width - 6
        anchors.verticalCenter: parent.verticalCenter
        width: 2
        height: 14
        radius: 1
        color: Theme.inkOnAccentFill
    }
    FocusRing {
        visible: block.isFocused
        targetRadius: 6
    }
}
