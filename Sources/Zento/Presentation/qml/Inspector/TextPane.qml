import QtQuick
import QtQuick.Templates as T
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings
    readonly property string sampleTitle: settings.titleCardText.length > 0 ? settings.titleCardText.split(" ")[0]
        : App.library.selectedItem.name?.split(" ")[0] ?? "Zento"

    title: qsTr("Text")
    Section {
        title: qsTr("Captions")
        ToggleRow {
            width: parent.width
            text: qsTr("Show captions")
            checked: pane.settings.showCaptions
            onToggled: pane.settings.showCaptions = checked
        }
        Transcript {
            width: parent.width
            line: App.editor?.timeline
            preview: App.editor?.preview
        }
        Row {
            visible: App.editor?.session.isTranscribing ?? false
            spacing: 8
            Spinner { anchors.verticalCenter: parent.verticalCenter }
            Caption {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Listening to the narration…")
            }
        }
        Gap { size: 8 }
        Button {
            readonly property var session: App.editor?.session ?? null

            visible: session !== null && (session.canTranscribe || session.isTranscribing)
            enabled: session?.canTranscribe ?? false
            size: Button.Small
            iconName: "refresh"
            text: qsTr("Transcribe again")
            onClicked: session.retranscribe()
        }
    }
    Section {
        title: qsTr("Cards")
        ToggleRow {
            width: parent.width
            text: qsTr("Title card")
            checked: pane.settings.titleCard
            onToggled: pane.settings.titleCard = checked
        }
        TextBox {
            width: parent.width
            enabled: pane.settings.titleCard
            label: qsTr("Text of the title card")
            placeholderText: App.library.selectedItem.name ?? qsTr("The recording's name")
            value: pane.settings.titleCardText
            onEdited: value => pane.settings.titleCardText = value
        }
        Gap { size: 4 }
        ToggleRow {
            width: parent.width
            text: qsTr("End card")
            checked: pane.settings.endCard
            onToggled: pane.settings.endCard = checked
        }
        TextBox {
            width: parent.width
            enabled: pane.settings.endCard
            label: qsTr("Heading of the end card")
            placeholderText: qsTr("Heading")
            value: pane.settings.endCardHeading
            onEdited: value => pane.settings.endCardHeading = value
        }
        Gap {}
        TextBox {
            width: parent.width
            enabled: pane.settings.endCard
            label: qsTr("Second line of the end card")
            placeholderText: qsTr("Second line, for instance an address")
            value: pane.settings.endCardLine
            onEdited: value => pane.settings.endCardLine = value
        }
        Gap { size: 12 }
        Label { text: qsTr("Design") }
        Gap {}
        ChoiceGroup {
            label: qsTr("Design of the cards")
            columns: 3
            cellWidth: 84
            cellHeight: 68
            spacing: 6
            focusGap: 0
            model: Gallery.cardDesigns.map(design => ({ value: design.id, name: design.name }))
            current: pane.settings.cardDesign
            onPicked: value => pane.settings.cardDesign = value
            visual: CaptionedVisual {
                id: tile

                Swatch {
                    anchors.fill: parent
                    chosen: tile.button.checked
                    address: "card/" + tile.entry.value + "/" + pane.settings.cardAccentHex.slice(1)
                        + "/" + encodeURIComponent(pane.sampleTitle)
                        + "/" + encodeURIComponent(App.library.selectedItem.appName ?? "")
                }
            }
        }
        Gap { size: 12 }
        Item {
            width: parent.width
            height: 24
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Accent")
            }
            AccentChoice {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                current: pane.settings.cardAccentHex
                onPicked: value => pane.settings.cardAccentHex = value
            }
        }
        Gap { size: 4 }
        ValueSlider {
            width: parent.width
            label: qsTr("Time on screen")
            value: pane.settings.cardSeconds
            standard: App.defaults.cardSeconds
            from: 1
            to: 5
            step: 0.1
            decimals: 1
            leastDecimals: 1
            unit: "s"
            spokenUnit: qsTr("seconds")
            onEdited: value => pane.settings.cardSeconds = value
        }
    }
}
