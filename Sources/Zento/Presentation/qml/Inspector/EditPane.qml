import QtQuick
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings

    title: qsTr("Edit")
    Section {
        title: qsTr("Camera")
        Label { text: qsTr("Zoom strength") }
        Gap {}
        Segmented {
            width: parent.width
            label: qsTr("Zoom strength")
            model: [
                { value: "subtle", name: qsTr("Subtle") },
                { value: "balanced", name: qsTr("Balanced") },
                { value: "dramatic", name: qsTr("Dramatic") }
            ]
            current: pane.settings.cameraIntensity
            onPicked: value => pane.settings.cameraIntensity = value
        }
        Gap {}
        ToggleRow {
            width: parent.width
            text: qsTr("Motion blur")
            help: qsTr("Softens fast camera moves.")
            checked: pane.settings.motionBlur
            onToggled: pane.settings.motionBlur = checked
        }
        ToggleRow {
            width: parent.width
            text: qsTr("Follow the story")
            help: qsTr("Zooms and chapters follow what the demo is about.")
            checked: pane.settings.semanticEdit
            onToggled: pane.settings.semanticEdit = checked
        }
    }
    Section {
        title: qsTr("Pace")
        ToggleRow {
            width: parent.width
            text: qsTr("Cut idle time")
            checked: pane.settings.cutIdle
            onToggled: pane.settings.cutIdle = checked
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Idle after")
            enabled: pane.settings.cutIdle
            value: pane.settings.idleThreshold
            standard: App.defaults.idleThreshold
            from: 0.6
            to: 5
            step: 0.1
            decimals: 1
            leastDecimals: 1
            unit: "s"
            spokenUnit: qsTr("seconds")
            onEdited: value => pane.settings.idleThreshold = value
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Typing speed")
            value: pane.settings.typingSpeed
            standard: App.defaults.typingSpeed
            from: 1
            to: 6
            step: 0.1
            decimals: 1
            leastDecimals: 1
            unit: "×"
            spokenUnit: qsTr("times")
            onEdited: value => pane.settings.typingSpeed = value
        }
    }
    Section {
        readonly property var line: App.editor?.timeline ?? null
        readonly property var zooms: line?.zooms ?? []
        readonly property int off: zooms.filter(zoom => !zoom.enabled).length

        visible: (line?.duration ?? 0) > 0
        title: qsTr("Zooms in this film")
        Label {
            text: (parent.parent.zooms.length === 1 ? qsTr("1 zoom") : qsTr("%1 zooms").arg(parent.parent.zooms.length))
                + (parent.parent.off > 0 ? qsTr(", %1 switched off").arg(parent.parent.off) : "")
        }
        Gap {}
        Row {
            readonly property var line: parent.parent.line

            spacing: 8
            Button {
                size: Button.Small
                iconName: "plus"
                text: qsTr("Add at playhead")
                onClicked: parent.line.addZoomAtPlayhead()
            }
            Button {
                visible: (parent.line?.deletedZooms ?? 0) > 0
                size: Button.Small
                kind: Button.Quiet
                iconName: "undo"
                text: qsTr("Restore %1").arg(parent.line?.deletedZooms ?? 0)
                onClicked: parent.line.restoreDeletedZooms()
            }
        }
    }
}
