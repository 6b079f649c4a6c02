import QtQuick
import Zento

// One end of the kept stretch; the track below it takes the pointer.
Rectangle {
    id: handle

    property string name
    property string time

    signal nudged(real seconds)

    width: Theme.timelineTrimHandle
    radius: 4
    color: Theme.primary
    activeFocusOnTab: true
    Accessible.role: Accessible.Slider
    Accessible.name: qsTr("%1, %2").arg(name).arg(time)
    Accessible.focusable: true
    Keys.onLeftPressed: handle.nudged(-0.1)
    Keys.onRightPressed: handle.nudged(0.1)
    Rectangle {
        anchors.centerIn: parent
        width: 2
        height: 18
        radius: 1
        color: Theme.inkOnPrimary
    }
    FocusRing {
        visible: handle.activeFocus
        targetRadius: 4
    }
}
