import QtQuick
import QtQuick.Templates as T
import Zento

// Words of a few lines that can be changed and copied.
Column {
    id: box

    property string label
    property string value

    signal edited(string value)

    onValueChanged: if (area.text !== value) area.text = value
    spacing: 2
    Item {
        width: parent.width
        height: 28
        Caption {
            anchors.verticalCenter: parent.verticalCenter
            text: box.label
            Accessible.ignored: true
        }
        IconButton {
            anchors.right: parent.right
            side: 28
            iconName: "copy"
            enabled: box.value.length > 0
            text: qsTr("Copy %1").arg(box.label.toLowerCase())
            onClicked: {
                clipboard.text = box.value
                clipboard.selectAll()
                clipboard.copy()
            }
        }
        TextEdit {
            id: clipboard

            visible: false
        }
    }
    T.TextArea {
        id: area

        width: parent.width
        implicitHeight: contentHeight + topPadding + bottomPadding
        padding: 10
        topPadding: 8
        bottomPadding: 8
        wrapMode: TextEdit.Wrap
        textFormat: TextEdit.PlainText
        font.family: Theme.uiFamily
        font.pixelSize: Theme.labelType.size
        selectByMouse: true
        color: Theme.text
        selectionColor: Theme.accentFill
        selectedTextColor: Theme.inkOnAccentFill
        text: box.value
        KeyNavigation.priority: KeyNavigation.BeforeItem
        KeyNavigation.tab: nextItemInFocusChain(true)
        KeyNavigation.backtab: nextItemInFocusChain(false)
        Accessible.role: Accessible.EditableText
        Accessible.name: box.label
        onEditingFinished: if (text !== box.value) box.edited(text)
        background: Rectangle {
            radius: Theme.radiusControl
            color: Theme.control
            border.width: area.activeFocus ? 2 : 0
            border.color: Theme.focus
        }
    }
}
