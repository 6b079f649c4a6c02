import QtQuick
import Zento

// The controls side by side.
Rectangle {
    color: Theme.chrome

    component Block: Column {
        property string title

        spacing: 10
        Label {
            text: parent.title
            type: Theme.labelType
            font.weight: 600
            color: Theme.textSecondary
        }
    }
    Column {
        x: 32
        y: 28
        spacing: 30
        Row {
            spacing: 40
            Block {
                title: "Primary button"
                Row {
                    spacing: 12
                    Button { kind: Button.Primary; iconName: "export"; text: "Export" }
                    Button { kind: Button.Primary; iconName: "export"; text: "Export"; enabled: false }
                }
            }
            Block {
                title: "Button"
                Row {
                    spacing: 12
                    Button { text: "Change…" }
                    Button { text: "Change…"; enabled: false }
                    Button { text: "Small"; size: Button.Small; iconName: "plus" }
                    Button { text: "Large"; size: Button.Large }
                }
            }
            Block {
                title: "Quiet, danger"
                Row {
                    spacing: 12
                    Button { kind: Button.Quiet; text: "Cancel" }
                    Button { kind: Button.Danger; text: "Move to Trash" }
                }
            }
            Block {
                title: "Icon button"
                Row {
                    spacing: 12
                    IconButton { iconName: "share"; text: "Share" }
                    IconButton { iconName: "share"; text: "Share"; filled: true }
                    IconButton { iconName: "share"; text: "Share"; on: true }
                    IconButton { iconName: "share"; text: "Share"; enabled: false }
                }
            }
            Block {
                title: "Key"
                KeyCaps { keys: ["Ctrl", "Shift", "N"] }
            }
        }
        Row {
            spacing: 24
            Block {
                title: "Record"
                RecordButton { width: 196 }
            }
            Block {
                title: "Not allowed yet"
                RecordButton { width: 196; missing: "Screen" }
            }
            Block {
                title: "Recording"
                RecordButton { width: 196; live: true; elapsed: "1:12" }
            }
            Block {
                title: "Folded"
                RecordButton { folded: true }
            }
            Block {
                title: "Progress"
                ProgressLine { value: 0.57; label: "Preparing preview…" }
            }
            Block {
                title: "Busy"
                Spinner {}
            }
        }
        Row {
            spacing: 40
            Block {
                title: "Toggle"
                ToggleRow { width: 220; text: "Off" }
                ToggleRow { width: 220; text: "On"; checked: true; help: "Crops the recording instead of leaving a margin." }
                ToggleRow { width: 220; text: "Disabled"; checked: true; enabled: false }
            }
            Block {
                title: "Slider with value"
                ValueSlider { width: 220; label: "Margin"; value: 0.12; standard: 0.055; to: 0.2; step: 0.005; factor: 100; decimals: 1; unit: "%" }
                ValueSlider { width: 220; label: "Zoom"; value: 1; to: 3; from: 1; step: 0.05; decimals: 2; leastDecimals: 1; unit: "×" }
                ValueSlider { width: 220; label: "Level"; value: -11; from: -40; to: 0; step: 1; unit: "dB"; enabled: false }
            }
            Block {
                title: "Segmented control, choice, fields"
                Segmented {
                    label: "Zoom strength"
                    model: [{ value: 1, name: "Subtle" }, { value: 2, name: "Balanced" }, { value: 3, name: "Dramatic" }]
                    current: 2
                }
                Choice { label: "Microphone"; iconName: "mic"; model: [{ value: 1, name: "System default" }]; current: 1 }
                SearchBox { placeholderText: "Search recordings"; keys: ["Ctrl", "L"] }
                TextBox { label: "Title"; value: "June invoices in a minute" }
            }
            Block {
                title: "Menu"
                Item {
                    width: 200
                    height: 120
                    Component.onCompleted: menu.open()
                    RecordingMenu { id: menu; hasRender: true; modal: false; closePolicy: RecordingMenu.NoAutoClose }
                }
            }
        }
        Row {
            spacing: 40
            Block {
                title: "Toast"
                Toast { text: "Video copied to clipboard" }
                Toast { text: "Moved to the Trash"; action: "Undo" }
            }
            Block {
                title: "Banner"
                Banner { width: 480; text: "Not enough free disk space to record — 1.4 GB left, and a recording needs about 1 GB per minute."; action: "Open folder" }
                Banner { width: 480; kind: Banner.Warning; text: "412 of 9 034 frames were dropped — the computer was under load, so the video may stutter." }
                Banner { width: 480; kind: Banner.Notice; text: "Another app already uses Start / stop recording." }
            }
            Block {
                title: "Accent"
                AccentChoice { current: "#7C6CFF" }
            }
        }
    }
}
