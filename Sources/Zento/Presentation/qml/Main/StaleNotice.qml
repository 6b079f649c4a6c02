import QtQuick
import Zento

// The film on the disk is older than the edit.
Rectangle {
    id: notice

    signal exportRequested()

    width: row.width + 20
    height: 40
    radius: Theme.radiusCard
    color: Theme.overlay
    border.color: Theme.line
    Row {
        id: row

        anchors.centerIn: parent
        spacing: 10
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: "info"
            size: Theme.sizeIconSmall
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Edited since the last export")
            type: Theme.labelType
        }
        Button {
            anchors.verticalCenter: parent.verticalCenter
            size: Button.Small
            overlay: true
            text: qsTr("Export again")
            onClicked: notice.exportRequested()
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            side: 28
            overlay: true
            iconName: "close"
            text: qsTr("Close")
            onClicked: App.editor.session.isStaleDismissed = true
        }
    }
}
