import QtQuick
import QtQuick.Templates as T
import Zento

Rectangle {
    id: chip

    required property T.AbstractButton button
    required property var entry

    anchors.fill: parent
    implicitWidth: Math.ceil(words.implicitWidth) + 16
    radius: 6
    color: button.checked ? Theme.control : "transparent"
    Label {
        id: words

        anchors.centerIn: parent
        text: chip.entry.name
        type: Theme.labelType
        color: chip.button.checked || chip.button.hovered ? Theme.text : Theme.textSecondary
        Accessible.ignored: true
    }
}
