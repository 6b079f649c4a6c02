import QtQuick
import QtQuick.Templates as T
import Zento

// Colour and thickness of marks.
Item {
    id: bar

    required property QtObject editor

    implicitWidth: row.implicitWidth + 24
    implicitHeight: 40
    Panel {
        anchors.fill: parent
        radius: Theme.radiusPanel
    }
    Row {
        id: row

        x: 12
        height: parent.height
        spacing: 12
        ChoiceGroup {
            anchors.verticalCenter: parent.verticalCenter
            label: qsTr("Colour")
            cellWidth: 20
            cellHeight: 20
            spacing: 8
            focusRadius: 10
            focusGap: 4
            model: bar.editor.palette.map(color => ({ value: color, name: color }))
            current: bar.editor.color
            onPicked: value => bar.editor.color = value
            visual: Rectangle {
                required property T.AbstractButton button
                required property var entry

                anchors.fill: parent
                radius: 10
                color: entry.value
                border.width: 1
                border.color: Qt.rgba(0.5, 0.52, 0.59, 0.45)
                Rectangle {
                    anchors.fill: parent
                    anchors.margins: -4
                    radius: 14
                    color: "transparent"
                    border.width: 2
                    border.color: Theme.accent
                    visible: parent.button.checked
                }
            }
        }
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 1
            height: 20
            color: Theme.lineStrong
        }
        ChoiceGroup {
            anchors.verticalCenter: parent.verticalCenter
            label: qsTr("Thickness")
            cellWidth: 28
            cellHeight: 28
            spacing: 0
            focusRadius: 7
            focusGap: 0
            model: [
                { value: 0.6, name: qsTr("Thin") },
                { value: 1, name: qsTr("Medium") },
                { value: 1.8, name: qsTr("Thick") }
            ]
            current: bar.editor.strokeWidth
            onPicked: value => bar.editor.strokeWidth = value
            visual: Rectangle {
                required property T.AbstractButton button
                required property var entry

                anchors.fill: parent
                radius: 7
                color: button.checked ? Theme.accentSoft : button.hovered ? Theme.controlOnOverlay : "transparent"
                Rectangle {
                    anchors.centerIn: parent
                    width: 16
                    height: parent.entry.value < 1 ? 2 : parent.entry.value > 1 ? 6 : 4
                    radius: height / 2
                    color: parent.button.checked ? Theme.accent : Theme.textSecondary
                }
            }
        }
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 1
            height: 20
            color: Theme.lineStrong
        }
        Caption {
            anchors.verticalCenter: parent.verticalCenter
            text: bar.editor.hasSelection ? qsTr("Colour and thickness of the selected mark") : qsTr("Colour and thickness for new marks")
        }
    }
}
