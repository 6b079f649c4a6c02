import QtQuick
import Zento

Menu {
    MenuItem {
        iconName: "globe"
        text: qsTr("Open with…")
        onTriggered: App.sharing.openWith()
    }
    MenuItem {
        iconName: "drag-out"
        text: qsTr("Send by e-mail")
        onTriggered: App.sharing.composeMail()
    }
    MenuItem {
        iconName: "cloud"
        text: qsTr("Copy to the synced folder")
        onTriggered: App.sharing.uploadToCloud()
    }
    MenuItem {
        iconName: "link"
        text: qsTr("Share link…")
        onTriggered: App.sharing.shareCloudLink()
    }
}
