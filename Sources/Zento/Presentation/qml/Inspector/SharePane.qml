import QtQuick
import Zento

Pane {
    id: pane

    readonly property var item: App.library.selectedItem
    readonly property bool hasFilm: item.hasRender ?? false
    readonly property var words: App.filmCopy

    title: qsTr("Share")
    Section {
        title: qsTr("Film")
        Rectangle {
            width: parent.width
            height: 60
            radius: Theme.radiusCard
            color: Theme.control
            RecordingPicture {
                x: 8
                y: 8
                width: 72
                height: 44
                path: pane.item.path ?? ""
            }
            Label {
                x: 92
                y: 10
                width: parent.width - 100
                text: pane.item.path === undefined ? qsTr("Nothing selected")
                    : pane.hasFilm ? qsTr("Exported") : qsTr("Not exported yet")
                weight: 500
            }
            Caption {
                x: 92
                y: 32
                width: parent.width - 100
                elide: Text.ElideMiddle
                text: pane.hasFilm ? pane.item.film.split("/").pop() : qsTr("Export the video first")
            }
        }
        Gap {}
        Row {
            spacing: 8
            Button {
                width: (pane.width - 16) / 3
                enabled: pane.hasFilm
                size: Button.Small
                iconName: "folder"
                text: qsTr("Show")
                onClicked: App.library.revealRender()
            }
            Button {
                width: (pane.width - 16) / 3
                enabled: pane.hasFilm
                size: Button.Small
                iconName: "copy"
                text: qsTr("Copy")
                onClicked: App.library.copyRenderToClipboard()
            }
            Button {
                id: share

                width: (pane.width - 16) / 3
                enabled: pane.hasFilm
                size: Button.Small
                iconName: "share"
                text: qsTr("Share…")
                onClicked: shareMenu.popup(0, height + 4)
                ShareMenu { id: shareMenu }
            }
        }
        Gap {
            size: 12
            visible: status.visible
        }
        Row {
            id: status

            width: parent.width
            spacing: 8
            visible: App.sharing.cloudStatus.length > 0
            Icon {
                name: "cloud"
                size: Theme.sizeIconSmall
                color: Theme.textTertiary
            }
            Caption {
                width: parent.width - 24
                text: App.sharing.cloudStatus
                wrapMode: Text.Wrap
            }
        }
    }
    Section {
        title: qsTr("Words to go with it")
        WordsBox {
            width: parent.width
            visible: pane.words.isWritten
            label: qsTr("Title")
            value: pane.words.title
            onEdited: value => pane.words.title = value
        }
        WordsBox {
            width: parent.width
            visible: pane.words.isWritten
            label: qsTr("Caption")
            value: pane.words.caption
            onEdited: value => pane.words.caption = value
        }
        WordsBox {
            width: parent.width
            visible: pane.words.isWritten
            label: qsTr("Post")
            value: pane.words.post
            onEdited: value => pane.words.post = value
        }
        Gap {
            size: 12
            visible: pane.words.isWritten
        }
        Row {
            spacing: 8
            Button {
                size: Button.Small
                iconName: "refresh"
                enabled: pane.words.canWrite
                text: pane.words.isWriting ? qsTr("Writing…")
                    : pane.words.isWritten ? qsTr("Write again") : qsTr("Write")
                onClicked: pane.words.write()
            }
            Button {
                size: Button.Small
                iconName: "check"
                visible: pane.words.isWritten
                enabled: !pane.words.isKept
                text: pane.words.isKept ? qsTr("Kept") : qsTr("Keep")
                onClicked: pane.words.keep()
            }
        }
        Gap {}
        Caption {
            width: parent.width
            wrapMode: Text.Wrap
            text: pane.words.isWritten ? pane.words.origin
                : qsTr("A title, a caption and a post, written from what the recording shows.")
        }
    }
    Section {
        title: qsTr("Synced folder")
        TextBox {
            width: parent.width
            label: qsTr("Synced folder")
            placeholderText: qsTr("The first one found")
            value: App.sharing.cloudFolder
            onEdited: value => App.sharing.cloudFolder = value
        }
        Gap { size: 4 }
        Caption {
            width: parent.width
            wrapMode: Text.Wrap
            text: qsTr("A folder that a cloud drive keeps in step. Films are copied into Zento below it.")
        }
    }
}
