import QtQuick
import Zento

// One end of the kept stretch; the track below it takes the pointer. Arrow keys move it, by a second
// with Control; with Shift they move the whole stretch, as a drag between the handles does.
Rectangle {
    id: handle

    property string part // "start" or "end"
    property string name
    property string time

    signal nudged(string part, real seconds)
    signal resetRequested()
    signal menuRequested()

    width: Theme.timelineTrimHandle
    radius: 4
    color: Theme.primary
    activeFocusOnTab: true
    Accessible.role: Accessible.Slider
    Accessible.name: qsTr("%1, %2").arg(name).arg(time)
    Accessible.focusable: true
    Keys.onPressed: event => {
        const seconds = event.modifiers & Qt.ControlModifier ? 1 : 0.1
        const moved = event.modifiers & Qt.ShiftModifier ? "move" : part
        event.accepted = true
        if (event.key === Qt.Key_Left || event.key === Qt.Key_Right)
            handle.nudged(moved, event.key === Qt.Key_Left ? -seconds : seconds)
        else if (event.key === Qt.Key_Delete)
            handle.resetRequested()
        else if (event.key === Qt.Key_Menu || event.key === Qt.Key_F10)
            handle.menuRequested()
        else
            event.accepted = false
    }
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
