import QtQuick
import QtQuick.Templates as T
import Zento

// Six colours, and any other by its number.
Row {
    id: root

    property string current
    readonly property var colors: [
        { value: "#7C6CFF", name: qsTr("Iris") },
        { value: "#3B82F6", name: qsTr("Blue") },
        { value: "#14B8A6", name: qsTr("Teal") },
        { value: "#84CC16", name: qsTr("Green") },
        { value: "#F59E0B", name: qsTr("Amber") },
        { value: "#F43F5E", name: qsTr("Rose") }
    ]
    readonly property bool isOther: !colors.some(color => color.value === current)

    signal picked(string value)

    spacing: 8
    ChoiceGroup {
        label: qsTr("Accent")
        model: root.colors
        current: root.current
        cellWidth: 18
        cellHeight: 18
        focusRadius: 9
        tips: true
        onPicked: value => root.picked(value)
        visual: Item {
            id: well

            required property T.AbstractButton button
            required property var entry

            anchors.fill: parent
            Rectangle {
                anchors.fill: parent
                radius: 9
                color: well.entry.value
            }
            Rectangle {
                anchors.fill: parent
                anchors.margins: -4
                radius: 13
                color: "transparent"
                border.width: 2
                border.color: Theme.accent
                visible: well.button.checked
            }
        }
    }
    ColorWell {
        current: root.current
        chosen: root.isOther
        onPicked: value => root.picked(value)
    }
}
