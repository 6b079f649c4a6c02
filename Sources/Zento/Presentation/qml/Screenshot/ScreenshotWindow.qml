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
    x: Screen.virtualX + (Screen.width - width) / 2
    y: Screen.virtualY + (Screen.height - height) / 2
    title: qsTr("Screenshot")
    color: Theme.chrome
    onClosing: editor.close()

    ScreenshotContent {
        anchors.fill: parent
        editor: window.editor
        focus: true
        onCloseRequested: window.close()
    }
}
