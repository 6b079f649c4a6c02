import QtQuick
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings

    title: qsTr("Pointer")
    Section {
        title: qsTr("Shape")
        ChoiceGroup {
            label: qsTr("Shape of the pointer")
            cellWidth: 60
            cellHeight: 68
            focusGap: 0
            model: [
                { value: "arrow", name: qsTr("Arrow") },
                { value: "hand", name: qsTr("Hand") },
                { value: "circle", name: qsTr("Circle") },
                { value: "hidden", name: qsTr("Hidden") }
            ]
            current: pane.settings.pointerStyle
            onPicked: value => pane.settings.pointerStyle = value
            visual: PointerVisual {}
        }
        Gap {}
        Caption {
            width: parent.width
            wrapMode: Text.Wrap
            text: switch (pane.settings.pointerStyle) {
                case "hand": return qsTr("Hand shows on clicks; elsewhere the pointer keeps its own shape.")
                case "circle": return qsTr("A circle stands for the pointer.")
                case "hidden": return qsTr("The film shows no pointer.")
                default: return qsTr("The pointer keeps its own shape.")
            }
        }
    }
    Section {
        title: qsTr("On screen")
        ValueSlider {
            width: parent.width
            enabled: pane.settings.pointerStyle !== "hidden"
            label: qsTr("Size")
            value: pane.settings.cursorScale
            standard: App.defaults.cursorScale
            from: 0.5
            to: 4
            step: 0.1
            decimals: 1
            leastDecimals: 1
            unit: "×"
            spokenUnit: qsTr("times")
            onEdited: value => pane.settings.cursorScale = value
        }
        ToggleRow {
            width: parent.width
            enabled: pane.settings.pointerStyle !== "hidden"
            text: qsTr("Hide when still")
            help: qsTr("Fades out after a second and a half.")
            checked: pane.settings.cursorAutoHide
            onToggled: pane.settings.cursorAutoHide = checked
        }
    }
    Section {
        title: qsTr("Keys")
        ToggleRow {
            width: parent.width
            text: qsTr("Show key presses")
            help: qsTr("Shortcuts appear at the bottom of the film.")
            checked: pane.settings.showKeystrokes
            onToggled: pane.settings.showKeystrokes = checked
        }
    }
}
