import QtQuick
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings

    title: qsTr("Sound")
    Section {
        title: qsTr("Music")
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
