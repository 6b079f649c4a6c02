import QtQuick
import Zento

Item {
    id: step

    property string iconName
    property string text
    property string detail
    property bool granted: false
    property bool askable: false
    property bool optional: false // nothing is lost but what `detail` says

    signal asked()

    width: parent ? parent.width : 496
    implicitHeight: Math.max(52, words.y + words.implicitHeight + 8)
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.description: granted ? qsTr("Ready") : detail
    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        width: 36
        height: 36
        radius: 10
        color: Theme.controlOnOverlay
        Icon {
            anchors.centerIn: parent
            name: step.iconName
        }
    }
    Label {
        x: 48
        y: 8
        text: step.text
        weight: 500
        Accessible.ignored: true
    }
    Caption {
        id: words

        x: 48
        y: 28
        width: step.width - 48 - 96
        wrapMode: Text.Wrap
        text: step.detail
        Accessible.ignored: true
    }
    Row {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: step.granted
        spacing: 4
        Icon {
            name: "check"
            size: Theme.sizeIconSmall
            color: Theme.success
        }
        Label {
            text: qsTr("Ready")
            type: Theme.labelType
            color: Theme.success
            Accessible.ignored: true
        }
    }
    Caption {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: !step.granted && !step.askable
        text: step.optional ? qsTr("Optional") : qsTr("Not available")
        color: step.optional ? Theme.textSecondary : Theme.warning
        Accessible.ignored: true
    }
    Button {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: !step.granted && step.askable
        size: Button.Small
        overlay: true
        text: qsTr("Allow…")
        Accessible.name: qsTr("Allow %1…").arg(step.text)
        onClicked: step.asked()
    }
}
