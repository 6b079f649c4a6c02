import QtQuick
import Zento

// Whole sentences that must be read; stays until it is closed.
Rectangle {
    id: banner

    enum Kind { Failure, Warning, Notice }

    property int kind: Banner.Failure
    property string text
    property string action

    signal acted()
    signal closed()

    implicitHeight: Math.max(44, words.implicitHeight + 20)
    radius: Theme.radiusCard
    color: kind === Banner.Failure ? Theme.dangerSoft : kind === Banner.Warning ? Theme.warningSoft : Theme.accentSoft
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
    Icon {
        x: 12
        y: 10
        name: banner.kind === Banner.Notice ? "keyboard" : "warning"
        color: banner.kind === Banner.Failure ? Theme.danger
            : banner.kind === Banner.Warning ? Theme.warning : Theme.accent
    }
    Label {
        id: words

        anchors.left: parent.left
        anchors.leftMargin: 44
        anchors.right: button.visible ? button.left : close.left
        anchors.rightMargin: 12
        y: Math.round((parent.height - implicitHeight) / 2)
        text: banner.text
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
    Button {
        id: button

        anchors.right: close.left
        anchors.rightMargin: 8
        y: 8
        visible: text.length > 0
        text: banner.action
        size: Button.Small
        onClicked: banner.acted()
    }
    IconButton {
        id: close

        anchors.right: parent.right
        anchors.rightMargin: 8
        y: 8
        side: 28
        iconName: "close"
        text: qsTr("Close the message")
        onClicked: banner.closed()
    }
}
