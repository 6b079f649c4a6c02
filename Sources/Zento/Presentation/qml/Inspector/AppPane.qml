import QtQuick
import Zento

Pane {
    id: pane

    signal aboutRequested()

    title: qsTr("App")
    Component.onCompleted: {
        App.speech.refresh()
        App.language.refresh()
    }
    Repeater {
        model: App.shortcuts.groups
        delegate: Section {
            id: group

            required property var modelData
            required property int index

            title: index === 0 ? qsTr("Shortcuts that work anywhere") : modelData.name
            Repeater {
                model: group.modelData.rows
                delegate: ShortcutRow {
                    required property var modelData

                    action: modelData.action
                    title: modelData.title
                    keys: modelData.keys
                    isDefault: modelData.isDefault
                    defaultText: modelData.defaultText
                    conflict: modelData.conflict.length > 0 ? modelData.conflict
                        : modelData.isRegistered ? "" : qsTr("Another app uses it")
                    waiting: App.shortcuts.recordingAction === action
                    onStarted: App.shortcuts.startRecording(action)
                    onStopped: App.shortcuts.stopRecording()
                    onPressed: (key, modifiers, scanCode) => App.shortcuts.pressed(key, modifiers, scanCode)
                    onResetRequested: App.shortcuts.reset(action)
                }
            }
        }
    }
    Section {
        title: qsTr("Speech")
        Label {
            width: parent.width
            text: App.speech.engine
            elide: Text.ElideMiddle
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Gap { size: 4 }
        Caption {
            width: parent.width
            wrapMode: Text.Wrap
            text: App.speech.expectation
        }
        Gap {}
        Column {
            width: parent.width
            spacing: 8
            visible: App.speech.canUseModels
            Choice {
                id: offer

                property string chosen: App.speech.offers.length > 0 ? App.speech.offers[0].id : ""

                width: parent.width
                visible: App.speech.offers.length > 0
                enabled: !App.speech.isFetching
                label: qsTr("Speech model to fetch")
                model: App.speech.offers.map(one => ({ value: one.id, name: qsTr("%1, %2 MB").arg(one.name).arg(one.megabytes) }))
                current: chosen
                onPicked: value => chosen = value
            }
            ProgressLine {
                width: parent.width
                visible: App.speech.isFetching
                value: App.speech.progress
                label: qsTr("Fetching the speech model")
            }
            Row {
                spacing: 8
                Button {
                    size: Button.Small
                    visible: offer.visible
                    text: App.speech.isFetching ? qsTr("Cancel") : qsTr("Fetch")
                    onClicked: App.speech.isFetching ? App.speech.cancelFetch() : App.speech.fetch(offer.chosen)
                }
                Button {
                    size: Button.Small
                    iconName: "folder"
                    enabled: !App.speech.isFetching
                    text: qsTr("Choose file…")
                    onClicked: modelChooser.open(qsTr("Choose a speech model"))
                }
                Button {
                    size: Button.Small
                    visible: App.speech.hasModel
                    enabled: !App.speech.isFetching
                    text: qsTr("Remove")
                    onClicked: App.speech.removeModel()
                }
            }
            FileChooser {
                id: modelChooser

                onChosen: path => App.speech.useFile(path)
                onFailed: sentence => App.messages.errorMessage = sentence
            }
        }
    }
    Section {
        title: qsTr("Writing and story")
        Caption {
            width: parent.width
            wrapMode: Text.Wrap
            visible: text.length > 0
            text: App.language.status
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Gap {}
        Choice {
            width: parent.width
            visible: App.language.models.length > 1
            label: qsTr("Language model")
            model: App.language.models.map(name => ({ value: name, name: name }))
            current: App.language.model
            onPicked: value => App.language.model = value
        }
        Caption {
            width: parent.width
            visible: App.language.models.length === 1
            elide: Text.ElideMiddle
            text: App.language.model
        }
        Gap {}
        TextBox {
            width: parent.width
            label: qsTr("Language server")
            placeholderText: qsTr("On this computer")
            value: App.language.host
            onEdited: value => App.language.host = value
        }
        Gap { size: 4 }
        Caption {
            width: parent.width
            wrapMode: Text.Wrap
            text: App.language.privacy
        }
        Gap {}
        Button {
            size: Button.Small
            iconName: "refresh"
            enabled: !App.language.isLooking
            text: qsTr("Look again")
            onClicked: App.language.refresh()
        }
    }
    Section {
        title: qsTr("Updates")
        ToggleRow {
            width: parent.width
            text: qsTr("Check once a week")
            checked: App.settings.autoCheckUpdates
            onToggled: App.settings.autoCheckUpdates = checked
        }
        Item {
            width: parent.width
            height: 36
            Caption {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Zento %1").arg(App.updates.version)
            }
            Button {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                size: Button.Small
                iconName: "refresh"
                enabled: !App.updates.isChecking
                text: qsTr("Check now")
                onClicked: App.updates.check()
            }
        }
        Gap { size: 4 }
        Row {
            spacing: 8
            Button {
                size: Button.Small
                iconName: "restore"
                text: qsTr("Restore all shortcuts")
                onClicked: App.shortcuts.resetAll()
            }
            Button {
                size: Button.Small
                text: qsTr("About Zento")
                onClicked: pane.aboutRequested()
            }
        }
    }
}
