import QtQuick
import Zento

// Searches as one types. Escape clears, then leaves.
TextBox {
    id: control

    property string shortcutText
    property alias keys: caps.keys

    signal leaving()

    iconName: "search"
    rightPadding: clear.visible ? 34 : caps.visible ? caps.width + 16 : 10
    onTextEdited: edited(text)
    Keys.onEscapePressed: {
        if (text.length > 0) {
            text = ""
            edited("")
        } else {
            leaving()
        }
    }
    KeyCaps {
        id: caps

        anchors.right: parent.right
        anchors.rightMargin: 9
        anchors.verticalCenter: parent.verticalCenter
        visible: control.length === 0 && keys.length > 0 && !control.activeFocus
    }
    IconButton {
        id: clear

        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        visible: control.length > 0
        side: 28
        iconName: "close"
        text: qsTr("Clear the search")
        activeFocusOnTab: false
        onClicked: {
            control.text = ""
            control.edited("")
            control.forceActiveFocus()
        }
    }
}
