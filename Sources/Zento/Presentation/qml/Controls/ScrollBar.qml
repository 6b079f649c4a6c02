import QtQuick
import QtQuick.Templates as T
import Zento

T.ScrollBar {
    id: control

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.08
    visible: size < 1
    Accessible.ignored: true
    contentItem: Rectangle {
        radius: 3
        color: control.pressed ? Theme.controlBorder : Theme.lineStrong
        opacity: control.active || control.hovered ? 1 : 0.5
        Behavior on opacity { NumberAnimation { duration: Theme.durationQuick } }
    }
}
