import QtQuick
import QtQuick.Templates as T
import Zento

// A line of text to type. `edited` tells a finished change: Enter, or the focus leaving.
T.TextField {
    id: control

    property string label
    property string value
    property string iconName

    signal edited(string value)

    implicitWidth: 264
    implicitHeight: Theme.sizeControl
    leftPadding: iconName.length > 0 ? 34 : 10
    rightPadding: 10
    verticalAlignment: TextInput.AlignVCenter
    opacity: enabled ? 1 : Theme.opacityDisabled
    text: value
    color: Theme.text
    placeholderTextColor: Theme.textTertiary
    selectionColor: Theme.accentFill
    selectedTextColor: Theme.inkOnAccentFill
    selectByMouse: true
    font.family: Theme.uiFamily
    font.pixelSize: Theme.bodyType.size
    Accessible.name: label.length > 0 ? label : placeholderText
    Accessible.role: Accessible.EditableText
    onValueChanged: if (text !== value) text = value
    onEditingFinished: if (text !== value) edited(text)

    background: Rectangle {
        radius: Theme.radiusControl
        color: Theme.dark ? Theme.well : "white"
        border.width: control.activeFocus ? 2 : 1
        border.color: control.activeFocus ? Theme.focus
            : control.hovered ? Theme.controlBorder : Theme.lineStrong
    }
    Icon {
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        name: control.iconName
        size: Theme.sizeIconSmall
        color: Theme.textTertiary
    }
    Label {
        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        visible: control.length === 0 && !control.preeditText
        text: control.placeholderText
        verticalAlignment: Text.AlignVCenter
        topPadding: 0
        bottomPadding: 0
        lineHeightMode: Text.ProportionalHeight
        lineHeight: 1
        color: Theme.textTertiary
        Accessible.ignored: true
    }
}
