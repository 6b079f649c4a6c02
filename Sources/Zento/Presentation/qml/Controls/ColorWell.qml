import QtQuick
import QtQuick.Shapes
import QtQuick.Templates as T
import Zento

// Any colour: opens a small panel with a palette and a field for the number.
T.AbstractButton {
    id: well

    property string current
    property bool chosen: false

    signal picked(string value)

    function read(text) {
        const digits = text.trim().replace("#", "")
        if (/^[0-9a-fA-F]{6}$/.test(digits))
            picked("#" + digits.toUpperCase())
    }

    implicitWidth: 18
    implicitHeight: 18
    focusPolicy: Qt.StrongFocus
    text: qsTr("Another colour…")
    Accessible.name: text
    Accessible.onPressAction: if (well.enabled) well.clicked()
    Accessible.description: current
    onClicked: panel.open()
    Keys.onReturnPressed: panel.open()
    background: Item {
        Shape {
            anchors.fill: parent
            visible: !well.chosen
            ShapePath {
                strokeColor: "transparent"
                fillGradient: ConicalGradient {
                    centerX: 9
                    centerY: 9
                    GradientStop { position: 0; color: "#F43F5E" }
                    GradientStop { position: 0.17; color: "#7C6CFF" }
                    GradientStop { position: 0.34; color: "#3B82F6" }
                    GradientStop { position: 0.5; color: "#14B8A6" }
                    GradientStop { position: 0.67; color: "#84CC16" }
                    GradientStop { position: 0.84; color: "#F59E0B" }
                    GradientStop { position: 1; color: "#F43F5E" }
                }
                PathAngleArc {
                    centerX: 9
                    centerY: 9
                    radiusX: 9
                    radiusY: 9
                    sweepAngle: 360
                }
            }
        }
        Rectangle {
            anchors.fill: parent
            visible: well.chosen
            radius: 9
            color: well.current
        }
        Rectangle {
            anchors.fill: parent
            anchors.margins: -4
            radius: 13
            color: "transparent"
            border.width: 2
            border.color: well.visualFocus ? Theme.focus : Theme.accent
            visible: well.chosen || well.visualFocus
        }
    }
    Tip {
        text: well.text
        shown: well.hovered && !panel.visible
    }
    T.Popup {
        id: panel

        y: well.height + 8
        x: well.width - width
        width: 216
        implicitHeight: body.implicitHeight + 24
        margins: 8
        padding: 12
        focus: true
        background: Panel { radius: Theme.radiusPanel }
        onOpened: field.forceActiveFocus(Qt.TabFocusReason)
        contentItem: Column {
            id: body

            spacing: 8
            ChoiceGroup {
                label: qsTr("Colours")
                columns: 8
                cellWidth: 20
                cellHeight: 20
                spacing: 4
                focusRadius: 4
                model: {
                    const list = []
                    for (const lightness of [0.72, 0.58, 0.44])
                        for (let hue = 0; hue < 8; ++hue) {
                            const value = String(Qt.hsla(hue / 8, 0.78, lightness, 1)).toUpperCase()
                            list.push({ value: value, name: value })
                        }
                    return list
                }
                current: well.current
                onPicked: value => well.picked(value)
                visual: Rectangle {
                    required property T.AbstractButton button
                    required property var entry

                    anchors.fill: parent
                    radius: 4
                    color: entry.value
                    border.width: button.checked ? 2 : 0
                    border.color: Theme.text
                }
            }
            TextBox {
                id: field

                width: parent.width
                label: qsTr("Colour as a number")
                placeholderText: "#7C6CFF"
                value: well.current
                onEdited: value => well.read(value)
                Keys.onReturnPressed: {
                    well.read(text)
                    panel.close()
                }
            }
        }
    }
}
