import QtQuick
import Zento

// One zoom of the lane, to look at. A film of hours has thousands: only what shows is made.
Item {
    id: block

    property var zoom
    property bool isHovered: false
    property bool isFocused: false
    property bool isLifted: false
    readonly property color ink: zoom.enabled ? Theme.inkOnAccentFill : Theme.textTertiary

    Rectangle {
        anchors.fill: parent
        visible: block.zoom.enabled
        radius: 6
        color: Qt.rgba(Theme.accentFill.r, Theme.accentFill.g, Theme.accentFill.b, 0.28 + 0.72 * block.zoom.tint)
        border.width: 1
        border.color: block.isHovered || block.isLifted ? Theme.accent : Theme.laneZoom
    }
    Loader {
        anchors.fill: parent
        active: !block.zoom.enabled
        sourceComponent: DashedFrame {
            radius: 6
            color: Theme.textTertiary
        }
    }
    Loader {
        anchors.fill: parent
        active: block.width >= 40
        sourceComponent: Item { Inscription {} }
    }
    Loader {
        x: parent.width - 6
        anchors.verticalCenter: parent.verticalCenter
        active: block.isHovered && block.width >= 20
        sourceComponent: Rectangle {
            width: 2
            height: 14
            radius: 1
            color: Theme.inkOnAccentFill
        }
    }
    Loader {
        anchors.fill: parent
        active: block.isFocused
        sourceComponent: Item {
            FocusRing { targetRadius: 6 }
        }
    }

    component Inscription: Row {
        anchors.verticalCenter: parent.verticalCenter
        x: block.width < 72 ? Math.max(2, Math.min(10, (block.width - width) / 2)) : 10
        spacing: 6
        visible: level.implicitWidth + 4 <= block.width // cut off, a level says a wrong one
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            visible: block.zoom.edited && !block.zoom.added && block.width >= level.implicitWidth + 24
            width: 6
            height: 6
            radius: 3
            color: block.ink
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: block.zoom.added && block.width >= level.implicitWidth + 30
            name: "plus"
            size: 12
            color: block.ink
        }
        Label {
            id: level

            text: block.zoom.zoom + "×"
            type: Theme.timeType
            color: block.ink
            Accessible.ignored: true
        }
        Label {
            visible: block.width >= 72 && text.length > 0
            width: Math.max(0, Math.min(implicitWidth, block.width - x - 20))
            text: block.zoom.title
            type: Theme.labelType
            color: block.ink
            Accessible.ignored: true
        }
    }
}
