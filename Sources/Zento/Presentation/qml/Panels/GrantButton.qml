import QtQuick
import QtQuick.Templates as T
import Zento

T.Button {
    id: control

    implicitWidth: 158
    implicitHeight: 60
    focusPolicy: Qt.StrongFocus
    text: qsTr("Grant permissions to record →")
    Accessible.name: text
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Keys.onReturnPressed: clicked()
    background: Rectangle {
        radius: 10
        color: control.hovered ? Qt.lighter(Theme.warningSoft, Theme.dark ? 1.3 : 1.02) : Theme.warningSoft
        FocusRing {
            visible: control.visualFocus
            targetRadius: 10
            gap: -4
        }
    }
    contentItem: Item {
        Icon {
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            name: "warning"
            color: Theme.warning
        }
        Label {
            x: 36
            width: parent.width - 44
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            type: Theme.labelType
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
