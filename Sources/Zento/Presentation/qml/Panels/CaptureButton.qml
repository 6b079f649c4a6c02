import QtQuick
import QtQuick.Templates as T
import Zento

T.Button {
    id: control

    property string iconName
    property color iconColor: Theme.textSecondary
    property string tip

    implicitWidth: 60
    implicitHeight: 60
    opacity: enabled ? 1 : Theme.opacityDisabled
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.description: tip
    Accessible.onPressAction: if (enabled) press()
    Accessible.onToggleAction: if (enabled) press()
    Keys.onReturnPressed: press()

    function press() {
        if (checkable) {
            toggle()
            toggled()
        } else {
            clicked()
        }
    }
    background: Rectangle {
        radius: 10
        color: control.checked ? Theme.accentSoft
            : control.down ? Theme.controlPressed
            : control.hovered ? Theme.controlHover : "transparent"
        FocusRing {
            visible: control.visualFocus
            targetRadius: 10
            gap: -4
        }
    }
    contentItem: Item {
        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            y: 11
            name: control.iconName
            color: control.checked ? Theme.accent : control.iconColor
        }
        Caption {
            anchors.horizontalCenter: parent.horizontalCenter
            y: 35
            text: control.text
            weight: 500
            color: control.checked ? Theme.accent : Theme.text
            Accessible.ignored: true
        }
    }
    Tip {
        text: control.tip
        shown: control.tip.length > 0 && (control.hovered || control.visualFocus)
    }
}
