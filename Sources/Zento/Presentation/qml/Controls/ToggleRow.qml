import QtQuick
import QtQuick.Templates as T
import Zento

// A setting that is on or off. The whole row is the target.
T.Switch {
    id: control

    property string help
    property bool overlay: false

    implicitWidth: 264
    implicitHeight: Math.max(36, words.implicitHeight + (help.length > 0 ? 12 : 8))
    opacity: enabled ? 1 : Theme.opacityDisabled
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.description: help
    Accessible.onPressAction: control.flip()
    Accessible.onToggleAction: control.flip()
    Keys.onReturnPressed: control.flip()
    Keys.onEnterPressed: control.flip()

    function flip() {
        if (!enabled)
            return
        toggle()
        toggled()
    }

    contentItem: Item {
        Column {
            id: words

            anchors.verticalCenter: parent.verticalCenter
            width: control.width - 36 - 12
            Label {
                width: parent.width
                text: control.text
                Accessible.ignored: true
            }
            Caption {
                width: parent.width
                visible: text.length > 0
                text: control.help
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
    }
    indicator: Rectangle {
        x: control.width - width
        y: Math.round((control.height - height) / 2)
        width: Theme.sizeToggleWidth
        height: Theme.sizeToggleHeight
        radius: height / 2
        color: control.checked ? (control.hovered ? Qt.lighter(Theme.accentFill, 1.1) : Theme.accentFill)
            : control.hovered ? Theme.control : "transparent"
        border.width: control.checked ? 0 : 1.5
        border.color: Theme.controlBorder
        Rectangle {
            x: control.checked ? parent.width - width - 3 : 4
            anchors.verticalCenter: parent.verticalCenter
            width: control.checked ? 14 : 12
            height: width
            radius: width / 2
            color: control.checked ? "white" : Theme.textSecondary
            Behavior on x { NumberAnimation { duration: Theme.durationInstant } }
        }
        FocusRing {
            visible: control.visualFocus
            targetRadius: 10
        }
    }
}
