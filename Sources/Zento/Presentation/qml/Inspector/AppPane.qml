import QtQuick
import Zento

Pane {
    id: pane

    signal aboutRequested()

    title: qsTr("App")
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
