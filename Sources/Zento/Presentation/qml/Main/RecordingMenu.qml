import QtQuick
import Zento

// What can be done to a recording.
Menu {
    id: menu

    property string path
    property bool hasRender: false

    MenuItem {
        iconName: "folder"
        text: qsTr("Show in folder")
        onTriggered: App.library.revealSession(menu.path)
    }
    MenuItem {
        iconName: "rename"
        text: qsTr("Rename")
        shortcut: "F2"
        onTriggered: App.library.renaming = menu.path
    }
    MenuItem {
        iconName: "copy"
        text: qsTr("Copy video")
        enabled: menu.hasRender
        shortcut: App.shortcuts.keys("copyVideo").join(" ")
        onTriggered: App.library.copyRenderToClipboard()
    }
    MenuLine {}
    MenuItem {
        iconName: "trash"
        text: qsTr("Move to Trash")
        shortcut: qsTr("Del")
        destructive: true
        onTriggered: App.library.moveToTrash(menu.path)
    }
}
