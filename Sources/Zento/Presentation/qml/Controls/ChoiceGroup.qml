import QtQuick
import QtQuick.Templates as T
import Zento

// One of several choices, laid out in a grid. One stop for the Tab key; the arrow keys move the
// choice. `model` is a list of {value, name, …}; each choice is drawn by `visual`, which is given
// the choice as `entry` and its button as `button`. With a `cellWidth` of 0 each takes the width its
// drawing asks for, and the row is broken at the group's edge.
Item {
    id: group

    property string label
    property var model: []
    property var current
    property int columns: model.length
    property real cellWidth: 60
    property real cellHeight: 40
    property real spacing: 8
    property Component visual
    property real focusRadius: Theme.radiusControl
    property real focusGap: 2
    property bool tips: false
    readonly property int currentIndex: {
        for (let i = 0; i < model.length; ++i)
            if (model[i].value === current)
                return i
        return -1
    }

    signal picked(var value)

    function move(from, by) {
        const next = from + by
        if (next < 0 || next >= model.length)
            return
        picked(model[next].value)
        repeater.itemAt(next)?.forceActiveFocus(Qt.TabFocusReason)
    }

    implicitWidth: columns * (cellWidth + spacing) - spacing
    implicitHeight: flow.implicitHeight
    opacity: enabled ? 1 : Theme.opacityDisabled
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Flow {
        id: flow

        width: group.cellWidth > 0 ? group.columns * (group.cellWidth + group.spacing) : group.width
        spacing: group.spacing
        Repeater {
            id: repeater

            model: group.model
            delegate: T.AbstractButton {
                id: button

                required property int index
                required property var modelData

                property Item drawing

                implicitWidth: group.cellWidth > 0 ? group.cellWidth : drawing?.implicitWidth ?? 0
                implicitHeight: group.cellHeight
                checked: index === group.currentIndex
                activeFocusOnTab: checked || (group.currentIndex < 0 && index === 0)
                focusPolicy: Qt.StrongFocus
                text: modelData.name
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData.name
                Accessible.onPressAction: if (button.enabled) button.clicked()
                Accessible.checkable: true
                Accessible.checked: checked
                onClicked: group.picked(modelData.value)
                Keys.onLeftPressed: group.move(index, -1)
                Keys.onRightPressed: group.move(index, 1)
                Keys.onUpPressed: event => { event.accepted = group.columns < group.model.length; group.move(index, -group.columns) }
                Keys.onDownPressed: event => { event.accepted = group.columns < group.model.length; group.move(index, group.columns) }
                Keys.onReturnPressed: button.clicked()
                Component.onCompleted: drawing = group.visual.createObject(button, { button: button, entry: modelData })
                FocusRing {
                    visible: button.visualFocus
                    targetRadius: group.focusRadius
                    gap: group.focusGap
                }
                Tip {
                    text: button.text
                    shown: group.tips && (button.hovered || button.visualFocus)
                }
            }
        }
    }
}
