import QtQuick
import Zento

// The tools, each with the letter that chooses it.
Item {
    id: column

    required property QtObject editor
    readonly property real step: Math.min(38, (height - 24) / column.editor.tools.length)

    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Tools")
    Repeater {
        model: column.editor.tools
        delegate: IconButton {
            id: button

            required property int index
            required property var modelData

            x: 10
            y: 4 + index * column.step + (index > 0 ? 9 : 0) + (index === column.editor.tools.length - 1 ? 9 : 0)
            width: 36
            height: Math.min(36, column.step - 2)
            side: 36
            iconName: "tool-" + modelData.id
            text: modelData.help
            shortcut: modelData.key
            on: column.editor.tool === modelData.id
            focusPolicy: Qt.TabFocus
            Accessible.role: Accessible.RadioButton
            Accessible.checkable: true
            Accessible.checked: on
            onClicked: column.editor.tool = modelData.id
            Label {
                anchors.right: parent.right
                anchors.rightMargin: 3
                anchors.bottom: parent.bottom
                anchors.bottomMargin: 1
                text: button.modelData.key
                font.pixelSize: 9
                lineHeight: 10
                topPadding: 0
                bottomPadding: 0
                opacity: 0.6
                color: button.on ? Theme.accent : Theme.textSecondary
                Accessible.ignored: true
            }
        }
    }
}
