import QtQuick
import Zento

// The ring around what the keyboard points at.
Rectangle {
    property real targetRadius: Theme.radiusControl
    property real gap: 2

    anchors.fill: parent
    anchors.margins: -gap - 2
    radius: targetRadius + gap + 2
    color: "transparent"
    border.width: 2
    border.color: Theme.focus
    z: 1
}
