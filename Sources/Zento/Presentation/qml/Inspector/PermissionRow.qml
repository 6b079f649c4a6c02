import QtQuick
import Zento

Item {
    id: row

    property string text
    property bool granted: false
    property bool askable: false
    property bool optional: false // no fault where it is missing
    property string reason

    signal asked()

    width: parent ? parent.width : 264
    implicitHeight: 32
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.description: granted ? qsTr("Ready") : reason.length > 0 ? reason : qsTr("Not allowed yet")
    Icon {
        anchors.verticalCenter: parent.verticalCenter
        name: row.granted ? "success" : row.optional ? "info" : "warning"
        size: Theme.sizeIconSmall
        color: row.granted ? Theme.success : row.optional ? Theme.textSecondary : Theme.warning
    }
    Label {
        x: 24
        anchors.verticalCenter: parent.verticalCenter
        text: row.text
        Accessible.ignored: true
    }
    Caption {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: row.granted || !row.askable
        text: row.granted ? qsTr("Ready") : row.reason
        Accessible.ignored: true
    }
    Button {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: !row.granted && row.askable
        size: Button.Small
        text: qsTr("Allow…")
        Accessible.name: qsTr("Allow %1…").arg(row.text)
        onClicked: row.asked()
    }
}
