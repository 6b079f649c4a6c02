import QtQuick
import Zento

// A raised surface: shadow, opaque ground, a hairline.
Item {
    id: panel

    property var elevation: Theme.popoverElevation
    property color color: Theme.overlay
    property real radius: Theme.radiusCard

    Shadow {
        elevation: panel.elevation
        cornerRadius: panel.radius
    }
    Rectangle {
        anchors.fill: parent
        anchors.margins: -1
        radius: panel.radius + 1
        color: panel.elevation.border
    }
    Rectangle {
        anchors.fill: parent
        radius: panel.radius
        color: panel.color
    }
}
