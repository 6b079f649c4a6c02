import QtQuick
import QtQuick.Window
import Zento

Window {
    id: window

    required property QtObject editor

    width: 1040
    height: 720
    minimumWidth: 860
    minimumHeight: 520
    title: qsTr("Screenshot")
    color: Theme.chrome
    onClosing: editor.close()
    Component.onCompleted: { // once: a window that is made larger stays where it is
        x = Screen.virtualX + (Screen.width - width) / 2
        y = Screen.virtualY + (Screen.height - height) / 2
    }

    ScreenshotContent {
        anchors.fill: parent
        editor: window.editor
        focus: true
        onCloseRequested: window.close()
    }
}
