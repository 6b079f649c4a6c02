import QtQuick
import Zento

// The red dot, with its halo. It pulses only while something is recorded.
Item {
    id: dot

    property real diameter: 14
    property real halo: 3
    property bool pulsing: false
    property color color: Theme.record
    // An animation in a hidden window would go on, and keep all others drawing.
    readonly property bool isSeen: visible && Window.visibility !== Window.Hidden

    width: diameter
    height: diameter
    Rectangle {
        anchors.centerIn: parent
        width: dot.diameter + 2 * dot.halo
        height: width
        radius: width / 2
        color: dot.color
        opacity: 0.24
        visible: dot.halo > 0
    }
    Rectangle {
        id: core

        anchors.fill: parent
        radius: width / 2
        color: dot.color
    }
    SequentialAnimation on opacity {
        running: dot.pulsing && dot.isSeen && !Theme.reducedMotion
        loops: Animation.Infinite
        alwaysRunToEnd: true
        NumberAnimation { to: 0.45; duration: Theme.durationRecordPulse / 2; easing.type: Easing.InOutSine }
        NumberAnimation { to: 1; duration: Theme.durationRecordPulse / 2; easing.type: Easing.InOutSine }
    }
}
