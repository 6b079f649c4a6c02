import QtQuick
import QtQuick.Templates as T
import Zento

// A button that shows an icon alone; `text` is its name, read aloud and shown as a tooltip.
T.Button {
    id: control

    property string iconName
    property real side: Theme.sizeIconButton
    property real iconSize: side < 32 ? Theme.sizeIconSmall : Theme.sizeIcon
    property bool filled: false
    property bool overlay: false
    property bool on: false // the thing it switches is on
    property string shortcut
    readonly property real corner: side < 32 ? 7 : side > 36 ? 10 : Theme.radiusControl

    implicitWidth: side
    implicitHeight: side
    opacity: enabled ? 1 : Theme.opacityDisabled
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    background: Rectangle {
        readonly property color ground: control.overlay ? Theme.controlOnOverlay : Theme.control

        radius: control.corner
        color: control.on ? Theme.accentSoft
            : control.down ? Theme.controlPressed
            : control.hovered ? (control.filled ? Theme.controlHover : ground)
            : control.filled ? ground : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.durationInstant } }
        FocusRing {
            visible: control.visualFocus
            targetRadius: control.corner
        }
    }
    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: control.iconName
            size: control.iconSize
            color: control.on ? Theme.accent : control.hovered ? Theme.text : Theme.textSecondary
        }
    }
    Tip {
        text: control.text
        shortcut: control.shortcut
        shown: control.hovered || control.visualFocus
    }
}
