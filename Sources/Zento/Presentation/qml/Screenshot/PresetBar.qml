import QtQuick
import QtQuick.Templates as T
import Zento

// The looks to choose from, and the way out of the window with the pointer.
Item {
    id: bar

    required property QtObject editor

    Row {
        x: 8
        y: 8
        spacing: 2
        ChoiceGroup {
            width: 520
            label: qsTr("Kind of look")
            cellWidth: 0
            cellHeight: 24
            spacing: 2
            focusRadius: 6
            focusGap: 0
            model: bar.editor.presetGroups.map((name, index) => ({ value: index, name: name }))
            current: bar.editor.presetGroup
            onPicked: value => bar.editor.presetGroup = value
            visual: ChipVisual {}
        }
    }
    Row {
        anchors.right: parent.right
        anchors.rightMargin: 16
        y: 6
        spacing: 8
        Item {
            width: out.implicitWidth
            height: 28
            Row {
                id: out

                height: parent.height
                spacing: 4
                Icon {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "drag-out"
                    size: Theme.sizeIconSmall
                    color: Theme.textTertiary
                }
                Caption {
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Drag the finished picture into another app")
                }
            }
            MouseArea {
                property point start

                anchors.fill: parent
                cursorShape: Qt.OpenHandCursor
                onPressed: mouse => start = Qt.point(mouse.x, mouse.y)
                onPositionChanged: mouse => {
                    if (pressed && Math.abs(mouse.x - start.x) + Math.abs(mouse.y - start.y) > 8)
                        bar.editor.startDrag()
                }
            }
        }
        Button {
            id: tune

            size: Button.Small
            iconName: "tab-app"
            text: qsTr("Fine-tune")
            enabled: !bar.editor.isBare
            onClicked: panel.visible ? panel.close() : panel.open()
            T.Popup {
                id: panel

                x: tune.width - width
                y: -height - 8
                width: 296
                implicitHeight: sliders.implicitHeight + 24
                padding: 16
                topPadding: 12
                bottomPadding: 12
                margins: 8
                background: Panel { radius: Theme.radiusPanel }
                contentItem: Column {
                    id: sliders

                    ValueSlider {
                        width: parent.width
                        label: qsTr("Margin")
                        value: bar.editor.padding
                        to: 0.2
                        step: 0.005
                        factor: 100
                        decimals: 1
                        unit: "%"
                        spokenUnit: qsTr("percent")
                        onEdited: value => bar.editor.padding = value
                    }
                    ValueSlider {
                        width: parent.width
                        label: qsTr("Corners")
                        value: bar.editor.cornerRadius
                        to: 60
                        step: 1
                        unit: "px"
                        spokenUnit: qsTr("pixels")
                        onEdited: value => bar.editor.cornerRadius = value
                    }
                    ValueSlider {
                        width: parent.width
                        label: qsTr("Shadow")
                        value: bar.editor.shadowOpacity
                        to: 1
                        step: 0.05
                        factor: 100
                        unit: "%"
                        spokenUnit: qsTr("percent")
                        onEdited: value => bar.editor.shadowOpacity = value
                    }
                }
            }
        }
    }
    ListView {
        id: list

        x: 0
        y: 36
        width: parent.width
        height: 72
        leftMargin: 16
        rightMargin: 16
        spacing: 8
        orientation: ListView.Horizontal
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        model: bar.editor.presets
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Looks")
        delegate: T.AbstractButton {
            id: button

            required property var modelData

            width: 64
            height: 68
            checked: bar.editor.presetID === modelData.value
            focusPolicy: Qt.TabFocus
            text: modelData.name
            Accessible.role: Accessible.RadioButton
            Accessible.name: text
            Accessible.onPressAction: if (button.enabled) button.clicked()
            Accessible.checkable: true
            Accessible.checked: checked
            onClicked: bar.editor.presetID = modelData.value
            Keys.onReturnPressed: clicked()
            Swatch {
                x: 2
                y: 6
                width: 60
                height: 40
                address: button.modelData.address
                chosen: button.checked
                FocusRing { visible: button.visualFocus }
            }
            Caption {
                y: 50
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: button.modelData.name
                color: button.checked ? Theme.text : Theme.textTertiary
                weight: button.checked ? 500 : 400
                Accessible.ignored: true
            }
        }
    }
}
