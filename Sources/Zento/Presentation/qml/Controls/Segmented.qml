import QtQuick
import QtQuick.Templates as T
import Zento

// Two to six short choices beside each other: {value, name, icon?}.
Rectangle {
    id: control

    property alias label: group.label
    property alias model: group.model
    property alias current: group.current
    property bool overlay: false

    signal picked(var value)

    implicitWidth: 264
    implicitHeight: Theme.sizeControl
    radius: Theme.radiusControl
    color: overlay ? Theme.controlOnOverlay : Theme.control

    ChoiceGroup {
        id: group

        x: 2
        y: 2
        spacing: 2
        cellWidth: (control.width - 4 - 2 * (model.length - 1)) / Math.max(1, model.length)
        cellHeight: control.height - 4
        focusRadius: 6
        focusGap: 1
        onPicked: value => control.picked(value)
        visual: Item {
            id: segment

            required property T.AbstractButton button
            required property var entry

            anchors.fill: parent
            Rectangle {
                anchors.fill: parent
                anchors.margins: Theme.dark ? 0 : -0.5
                visible: segment.button.checked
                radius: 6
                color: Theme.dark ? (control.overlay ? Qt.lighter(Theme.controlPressed, 1.15) : "#3A3E4A") : Theme.overlay
                border.width: Theme.dark ? 0 : 1
                border.color: Theme.lineStrong
            }
            Row {
                anchors.centerIn: parent
                spacing: 6
                Icon {
                    anchors.verticalCenter: parent.verticalCenter
                    visible: name.length > 0
                    name: segment.entry.icon ?? ""
                    size: Theme.sizeIconSmall
                    color: text.color
                }
                Label {
                    id: text

                    anchors.verticalCenter: parent.verticalCenter
                    text: segment.entry.name
                    type: Theme.labelType
                    color: segment.button.checked || segment.button.hovered ? Theme.text : Theme.textSecondary
                    Accessible.ignored: true
                }
            }
        }
    }
}
