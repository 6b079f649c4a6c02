import QtQuick
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings

    function devices(list, current) {
        const entries = [{ value: "", name: qsTr("System default") }].concat(list ?? [])
        if (!entries.some(entry => entry.value === current))
            entries.push({ value: current, name: current })
        return entries
    }
    function isMissing(action) {
        return settings.muteNotifications && action.trim().length > 0 && !App.model.installedActions.includes(action.trim())
    }

    title: qsTr("Record")
    Component.onCompleted: {
        App.model.refreshActions()
        App.model.refreshDevices()
    }
    Section {
        title: qsTr("With the screen")
        ToggleRow {
            width: parent.width
            text: qsTr("Microphone")
            checked: pane.settings.recordNarration
            onToggled: pane.settings.recordNarration = checked
        }
        Choice {
            width: parent.width
            enabled: pane.settings.recordNarration
            label: qsTr("Microphone to use")
            iconName: "mic"
            model: pane.devices(App.model.microphones, pane.settings.microphoneID)
            current: pane.settings.microphoneID
            onPicked: value => pane.settings.microphoneID = value
        }
        Gap { size: 4 }
        ToggleRow {
            width: parent.width
            text: qsTr("Camera")
            checked: pane.settings.recordWebcam
            onToggled: pane.settings.recordWebcam = checked
        }
        Choice {
            width: parent.width
            enabled: pane.settings.recordWebcam
            label: qsTr("Camera to use")
            iconName: "webcam"
            model: pane.devices(App.model.cameras, pane.settings.cameraID)
            current: pane.settings.cameraID
            onPicked: value => pane.settings.cameraID = value
        }
        Gap { size: 4 }
        ToggleRow {
            width: parent.width
            text: qsTr("Computer sound")
            checked: pane.settings.recordSystemAudio
            onToggled: pane.settings.recordSystemAudio = checked
        }
    }
    Section {
        title: qsTr("Before it starts")
        Label { text: qsTr("Countdown in seconds") }
        Gap {}
        Segmented {
            width: parent.width
            label: qsTr("Countdown in seconds")
            model: [0, 1, 2, 3, 5, 10].map(seconds => ({ value: seconds, name: seconds === 0 ? qsTr("Off") : String(seconds) }))
            current: pane.settings.countdownSeconds
            onPicked: value => pane.settings.countdownSeconds = value
        }
    }
    Section {
        title: qsTr("Quiet")
        ToggleRow {
            width: parent.width
            text: qsTr("Mute notifications")
            checked: pane.settings.muteNotifications
            onToggled: pane.settings.muteNotifications = checked
        }
        Repeater {
            model: [
                { key: "focusOnShortcut", name: qsTr("At start") },
                { key: "focusOffShortcut", name: qsTr("At end") }
            ]
            delegate: Column {
                id: line

                required property var modelData

                width: parent.width
                bottomPadding: 8
                Row {
                    spacing: 8
                    Caption {
                        width: 44
                        anchors.verticalCenter: parent.verticalCenter
                        text: line.modelData.name
                        Accessible.ignored: true
                    }
                    TextBox {
                        width: pane.width - 52
                        enabled: pane.settings.muteNotifications
                        label: qsTr("Action, %1").arg(line.modelData.name)
                        value: pane.settings[line.modelData.key]
                        onEdited: value => pane.settings[line.modelData.key] = value
                    }
                }
                Caption {
                    x: 52
                    width: pane.width - 52
                    visible: pane.isMissing(pane.settings[line.modelData.key])
                    text: qsTr("There is no action of this name.")
                    color: Theme.warning
                }
            }
        }
    }
    Section {
        title: qsTr("Permissions")
        PermissionRow {
            text: qsTr("Screen")
            granted: App.permissions.screen
            reason: qsTr("No display to record")
        }
        PermissionRow {
            text: qsTr("Clicks and keys")
            granted: App.permissions.input
            askable: App.permissions.needsInput
            optional: !App.permissions.needsInput
            reason: qsTr("Optional")
            onAsked: App.permissions.requestInputPermission()
        }
        Column {
            x: 24
            width: parent.width - 24
            visible: !App.permissions.input && !App.permissions.needsInput
            spacing: 4
            bottomPadding: 8
            Caption {
                width: parent.width
                wrapMode: Text.Wrap
                text: qsTr("This desktop shows Zento the pointer, so zooms go to where it rests. Clicks and keys make them better: run this, then log in again. Every program of yours can see them then.")
            }
            TextBox {
                width: parent.width
                readOnly: true
                label: qsTr("The command that allows clicks and keys")
                value: App.inputCommand
                font.family: Theme.monoFamily
                font.pixelSize: Theme.captionType.size
                onActiveFocusChanged: if (activeFocus) selectAll()
            }
        }
        PermissionRow {
            text: qsTr("Accessibility")
            optional: !App.permissions.needsInput
            granted: App.permissions.accessibility
            askable: true
            onAsked: App.permissions.requestAccessibilityPermission()
        }
        PermissionRow {
            text: qsTr("Microphone")
            granted: App.permissions.microphone
            askable: true
            onAsked: App.permissions.requestMicrophonePermission()
        }
        PermissionRow {
            text: qsTr("Camera")
            granted: App.permissions.camera
            askable: true
            onAsked: App.permissions.requestCameraPermission()
        }
    }
}
