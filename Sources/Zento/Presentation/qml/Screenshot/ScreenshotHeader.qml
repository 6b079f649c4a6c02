import QtQuick
import Zento

Item {
    id: header

    required property QtObject editor

    signal copyRequested()
    signal saveRequested()

    Row {
        x: 16
        height: parent.height
        spacing: 8
        Logo { anchors.verticalCenter: parent.verticalCenter }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Screenshot")
            type: Theme.titleType
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Caption {
            anchors.verticalCenter: parent.verticalCenter
            text: header.editor.sizeText
        }
    }
    Row {
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 8
        Button {
            visible: header.editor.hasCrop
            kind: Button.Quiet
            iconName: "tool-crop"
            text: qsTr("Uncrop")
            tip: qsTr("Show the whole capture again")
            onClicked: header.editor.uncrop()
        }
        IconButton {
            iconName: "undo"
            enabled: header.editor.canUndo
            text: qsTr("Undo")
            shortcut: qsTr("Ctrl Z")
            onClicked: header.editor.undo()
        }
        IconButton {
            iconName: "redo"
            enabled: header.editor.canRedo
            text: qsTr("Redo")
            shortcut: qsTr("Ctrl Shift Z")
            onClicked: header.editor.redo()
        }
        Gap {}
        Button {
            id: share

            visible: header.editor.canShare
            kind: Button.Quiet
            iconName: "share"
            text: qsTr("Share")
            onClicked: shareMenu.popup(share, 0, height + 4)
            Menu {
                id: shareMenu

                MenuItem {
                    iconName: "globe"
                    text: qsTr("Open with…")
                    onTriggered: header.editor.openWith()
                }
                MenuItem {
                    iconName: "drag-out"
                    text: qsTr("Send by e-mail")
                    onTriggered: header.editor.composeMail()
                }
            }
        }
        Button {
            iconName: "save"
            text: header.editor.saveTo.length > 0 ? qsTr("Save") : qsTr("Save…")
            tip: qsTr("Ctrl S")
            onClicked: header.saveRequested()
        }
        Button {
            kind: Button.Primary
            iconName: "copy"
            text: qsTr("Copy")
            tip: qsTr("Ctrl C")
            onClicked: header.copyRequested()
        }
    }
}
