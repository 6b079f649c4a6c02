import QtQuick
import Zento

// A short confirmation, which may carry one action.
Item {
    id: toast

    property string text
    property string action
    property string iconName: "success"
    property color iconColor: Theme.success
    property real barHeight: 40

    signal acted()

    implicitWidth: 12 + 18 + 10 + Math.min(words.implicitWidth, 420) + (button.visible ? button.width + 14 : 16)
    implicitHeight: barHeight
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
    Panel {
        anchors.fill: parent
        radius: Theme.radiusPanel
    }
    Icon {
        id: icon

        x: 12
        anchors.verticalCenter: parent.verticalCenter
        size: 18
        name: toast.iconName
        color: toast.iconColor
    }
    Label {
        id: words

        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, 420)
        text: toast.text
        weight: 500
        Accessible.ignored: true
    }
    Button {
        id: button

        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        visible: text.length > 0
        text: toast.action
        size: Button.Small
        overlay: true
        onClicked: toast.acted()
    }
}
