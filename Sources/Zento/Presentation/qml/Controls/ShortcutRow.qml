import QtQuick
import QtQuick.Templates as T
import Zento

// An action with its keys. A click waits for new ones.
Column {
    id: root

    property string action
    property string title
    property var keys: []
    property bool isDefault: true
    property string defaultText
    property string conflict
    property bool waiting: false

    signal started()
    signal stopped()
    signal pressed(int key, int modifiers, int scanCode)
    signal resetRequested()

    width: parent ? parent.width : 264
    T.Button {
        id: button

        width: parent.width
        implicitHeight: 32
        focusPolicy: Qt.StrongFocus
        text: root.title
        Accessible.name: root.title
        Accessible.onPressAction: if (button.enabled) button.clicked()
        Accessible.description: root.waiting ? qsTr("Press the new shortcut") : root.keys.join(" ")
        onClicked: root.waiting ? root.stopped() : root.started()
        onActiveFocusChanged: if (!activeFocus && root.waiting) root.stopped()
        Keys.onPressed: event => {
            if (root.waiting) {
                event.accepted = true
                root.pressed(event.key, event.modifiers, event.nativeScanCode)
            } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                event.accepted = true
                root.started()
            }
        }
        Keys.onShortcutOverride: event => event.accepted = root.waiting
        background: Rectangle {
            anchors.fill: parent
            anchors.leftMargin: -8
            anchors.rightMargin: -8
            radius: Theme.radiusControl
            color: button.hovered && !root.waiting ? Theme.control : "transparent"
            FocusRing {
                visible: button.visualFocus && !root.waiting
                gap: 0
            }
        }
        contentItem: Item {
            Label {
                anchors.left: parent.left
                anchors.right: root.waiting ? field.left : caps.left
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                text: root.title
                font.pixelSize: Math.round(12 * Theme.textScale)
                Accessible.ignored: true
            }
            KeyCaps {
                id: caps

                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: !root.waiting
                keys: root.keys
            }
            Rectangle {
                id: field

                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: root.waiting
                width: 152
                height: 28
                radius: Theme.radiusControl
                color: Theme.dark ? Theme.well : "white"
                border.width: 2
                border.color: Theme.focus
                Caption {
                    anchors.centerIn: parent
                    text: qsTr("Press the new shortcut")
                    Accessible.ignored: true
                }
            }
        }
        Tip {
            text: qsTr("Click, then press the new shortcut")
            shown: button.hovered && !root.waiting
        }
    }
    Item {
        width: parent.width
        height: 28
        visible: root.conflict.length > 0 || !root.isDefault
        Icon {
            id: mark

            y: 5
            visible: root.conflict.length > 0
            name: "warning"
            size: 14
            color: Theme.warning
        }
        Caption {
            x: mark.visible ? 20 : 0
            y: 4
            width: back.x - x - 6
            text: root.conflict
            color: Theme.warning
        }
        Button {
            id: back

            anchors.right: parent.right
            anchors.rightMargin: -6
            visible: !root.isDefault
            implicitHeight: 24
            leftPadding: 6
            rightPadding: 6
            kind: Button.Quiet
            size: Button.Small
            iconName: "restore"
            text: qsTr("Back to %1").arg(root.defaultText)
            onClicked: root.resetRequested()
        }
    }
}
