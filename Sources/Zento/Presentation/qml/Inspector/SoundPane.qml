import QtQuick
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings
    readonly property var music: App.music
    readonly property var track: App.editor?.musicTrack ?? null
    readonly property bool hasRecording: (App.library.selectedItem.path ?? "").length > 0

    signal musicRequested(string way)

    title: qsTr("Sound")
    Section {
        title: qsTr("Music")
        Rectangle {
            width: parent.width
            height: 52
            visible: pane.music.name.length > 0
            radius: Theme.radiusControl
            color: Theme.control
            Icon {
                x: 14
                anchors.verticalCenter: parent.verticalCenter
                name: "music"
                color: Theme.textSecondary
            }
            Column {
                x: 44
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width - x - 40
                Label {
                    width: parent.width
                    text: pane.music.name
                    elide: Text.ElideRight
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
                Caption {
                    readonly property int seconds: Math.round(pane.music.duration)
                    readonly property real bpm: pane.track?.bpm ?? 0

                    width: parent.width
                    visible: seconds > 0
                    text: (bpm > 0 ? qsTr("%1 bpm · ").arg(Math.round(bpm)) : "")
                        + Math.floor(seconds / 60) + ":" + String(seconds % 60).padStart(2, "0")
                }
            }
            IconButton {
                anchors.right: parent.right
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                side: 28
                iconName: "close"
                text: qsTr("Remove music")
                onClicked: pane.music.remove()
            }
        }
        Gap {
            size: 8
            visible: pane.music.name.length > 0
        }
        MusicStrip {
            width: parent.width
            visible: pane.music.name.length > 0 && track !== null && track.duration > 0
            track: pane.track
        }
        Gap {
            size: 8
            visible: pane.music.name.length > 0
        }
        Row {
            spacing: 8
            Button {
                size: Button.Small
                iconName: "folder"
                text: qsTr("Choose file…")
                enabled: pane.hasRecording
                onClicked: musicChooser.open(qsTr("Choose music"))
            }
            Button {
                size: Button.Small
                iconName: "search"
                text: qsTr("Find music…")
                enabled: pane.hasRecording
                onClicked: pane.musicRequested("made")
            }
        }
        FileChooser {
            id: musicChooser

            onChosen: path => pane.music.useFile(path)
            onFailed: sentence => App.messages.errorMessage = sentence
        }
        Gap { size: 8 }
        Column {
            width: parent.width
            visible: pane.music.credit.length > 0
            spacing: 6
            Caption {
                width: parent.width
                text: pane.music.credit
                wrapMode: Text.Wrap
            }
            Row {
                spacing: 8
                Button {
                    size: Button.Small
                    iconName: "copy"
                    text: qsTr("Copy credit")
                    onClicked: {
                        clipboard.text = pane.music.credit
                        clipboard.selectAll()
                        clipboard.copy()
                    }
                }
                Button {
                    readonly property bool stands: pane.settings.endCard
                        && pane.settings.endCardLine === pane.music.creditLine

                    size: Button.Small
                    iconName: stands ? "check" : "plus"
                    text: stands ? qsTr("On the end card") : qsTr("To the end card")
                    enabled: !stands
                    onClicked: {
                        pane.settings.endCardLine = pane.music.creditLine
                        pane.settings.endCard = true
                    }
                }
            }
            TextEdit {
                id: clipboard

                visible: false
            }
            Gap { size: 4 }
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Level")
            value: pane.settings.musicGainDb
            standard: App.defaults.musicGainDb
            from: -40
            to: 0
            step: 1
            unit: "dB"
            spokenUnit: qsTr("decibels")
            onEdited: value => pane.settings.musicGainDb = value
        }
    }
    Section {
        title: qsTr("Voices")
        ValueSlider {
            width: parent.width
            label: qsTr("Narration")
            value: pane.settings.narrationGainDb
            standard: App.defaults.narrationGainDb
            from: -20
            to: 12
            step: 0.5
            decimals: 1
            unit: "dB"
            spokenUnit: qsTr("decibels")
            onEdited: value => pane.settings.narrationGainDb = value
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Computer sound")
            value: pane.settings.systemAudioGainDb
            standard: App.defaults.systemAudioGainDb
            from: -30
            to: 6
            step: 0.5
            decimals: 1
            unit: "dB"
            spokenUnit: qsTr("decibels")
            onEdited: value => pane.settings.systemAudioGainDb = value
        }
    }
    Section {
        title: qsTr("Effects")
        ToggleRow {
            width: parent.width
            text: qsTr("Click sounds")
            checked: pane.settings.clickSFX
            onToggled: pane.settings.clickSFX = checked
        }
        ToggleRow {
            width: parent.width
            text: qsTr("Zoom whoosh")
            checked: pane.settings.whooshSFX
            onToggled: pane.settings.whooshSFX = checked
        }
    }
}
