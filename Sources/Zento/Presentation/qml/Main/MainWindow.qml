import QtQuick
import QtQuick.Window
import Zento

Window {
    id: window

    property bool libraryFolded: width < 1280 || userFolded
    property bool userFolded: false
    property bool goesToTaskbar: false
    property alias film: content.film
    property alias timeline: content.timeline

    // With room for the frame that the window manager puts around it.
    width: Math.max(minimumWidth, Math.min(1440, Screen.width))
    height: Math.max(minimumHeight, Math.min(900, Screen.height - 56))
    minimumWidth: Theme.sizeWindowMinWidth
    minimumHeight: Theme.sizeWindowMinHeight
    title: App.library.selectedItem.name !== undefined ? qsTr("%1 — Zento").arg(App.library.selectedItem.name) : qsTr("Zento")
    color: Theme.chrome
    // Its place is the user's from here on: a window that is shown again is not placed anew.
    onVisibleChanged: if (!visible) {
        x = x
        y = y
    }

    function goToTaskbar() {
        goesToTaskbar = true
        showMinimized()
    }
    // Wayland has no way to ask for a window back from there: it is shown as a new one.
    function leaveTaskbar() {
        if (goesToTaskbar) {
            hide()
            goesToTaskbar = false
        }
    }

    MainContent {
        id: content

        anchors.fill: parent
        libraryFolded: window.libraryFolded
        onLibraryToggled: window.userFolded = !window.userFolded
    }
}
