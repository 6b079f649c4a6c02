import QtQuick
import QtQuick.Templates as T
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings
    // What each shape rounds its corners by; a shape is a starting point for the roundness.
    readonly property var shapes: [
        { value: "circle", name: qsTr("Circle"), roundness: 0.5 },
        { value: "rounded", name: qsTr("Rounded"), roundness: 0.22 },
        { value: "square", name: qsTr("Square"), roundness: 0.08 }
    ]

    title: qsTr("Webcam")
    Section {
        title: qsTr("Place")
        Row {
            spacing: 32
            Rectangle {
                width: 104
                height: 64
                radius: 10
                color: Theme.control
                ChoiceGroup {
                    anchors.centerIn: parent
                    label: qsTr("Place of the webcam")
                    columns: 2
                    cellWidth: 43
                    cellHeight: 23
                    spacing: 6
                    focusRadius: 6
                    tips: true
                    model: [
                        { value: "topLeft", name: qsTr("Top left") },
                        { value: "topRight", name: qsTr("Top right") },
                        { value: "bottomLeft", name: qsTr("Bottom left") },
                        { value: "bottomRight", name: qsTr("Bottom right") }
                    ]
                    current: pane.settings.webcamCorner
                    onPicked: value => pane.settings.webcamCorner = value
                    visual: Rectangle {
                        id: corner

                        required property T.AbstractButton button
                        required property var entry

                        anchors.fill: parent
                        radius: 6
                        color: button.checked ? Theme.accentSoft : Theme.controlHover
                        border.width: button.checked ? 2 : 0
                        border.color: Theme.accent
                        Rectangle {
                            anchors.centerIn: parent
                            width: 12
                            height: 12
                            radius: 6
                            color: corner.button.checked ? Theme.accent : Theme.controlBorder
                        }
                    }
                }
            }
            // How the bubble will look, beside its place.
            Item {
                width: 64
                height: 64
                Shadow {
                    anchors.fill: bubble
                    visible: pane.settings.webcamShadow
                    elevation: Theme.popoverElevation
                    cornerRadius: Math.max(4, bubble.radius)
                }
                Rectangle {
                    id: bubble

                    anchors.fill: parent
                    radius: width * pane.settings.webcamRoundness
                    color: Theme.controlPressed
                    border.width: pane.settings.webcamRing ? 2 : 0
                    border.color: "white"
                    Icon {
                        anchors.centerIn: parent
                        name: "webcam"
                        size: 24
                        color: Theme.text
                    }
                }
            }
        }
        Gap { size: 4 }
        ValueSlider {
            width: parent.width
            label: qsTr("Size")
            value: pane.settings.webcamSize
            standard: App.defaults.webcamSize
            from: 0.12
            to: 0.4
            step: 0.01
            factor: 100
            unit: "%"
            spokenUnit: qsTr("percent")
            onEdited: value => pane.settings.webcamSize = value
        }
    }
    Section {
        title: qsTr("Shape")
        Segmented {
            width: parent.width
            label: qsTr("Shape")
            model: pane.shapes
            current: pane.settings.webcamShape
            onPicked: value => {
                pane.settings.webcamShape = value
                pane.settings.webcamRoundness = pane.shapes.find(shape => shape.value === value).roundness
            }
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Roundness")
            value: pane.settings.webcamRoundness
            standard: pane.shapes.find(shape => shape.value === pane.settings.webcamShape)?.roundness ?? NaN
            to: 0.5
            step: 0.01
            factor: 100
            unit: "%"
            spokenUnit: qsTr("percent")
            onEdited: value => pane.settings.webcamRoundness = value
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Zoom")
            value: pane.settings.webcamZoom
            standard: App.defaults.webcamZoom
            from: 1
            to: 3
            step: 0.05
            decimals: 2
            leastDecimals: 1
            unit: "×"
            spokenUnit: qsTr("times")
            onEdited: value => pane.settings.webcamZoom = value
        }
    }
    Section {
        title: qsTr("Finish")
        Repeater {
            model: [
                { key: "webcamRing", name: qsTr("Ring") },
                { key: "webcamShadow", name: qsTr("Shadow") },
                { key: "webcamMirror", name: qsTr("Mirror") },
                { key: "webcamEnhance", name: qsTr("Improve the light") },
                { key: "webcamBlurBackground", name: qsTr("Blur what is behind me") }
            ]
            delegate: ToggleRow {
                required property var modelData

                width: parent.width
                text: modelData.name
                checked: pane.settings[modelData.key]
                onToggled: pane.settings[modelData.key] = checked
            }
        }
    }
}
