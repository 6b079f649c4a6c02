import QtQuick
import QtQuick.Templates as T
import Zento

// The whole main window below its frame.
FocusScope {
    id: content

    property bool libraryFolded: false
    property alias film: stage.film
    property alias timeline: timelineSlot.timeline
    readonly property bool showInspector: App.model.showInspector

    signal libraryToggled()

    function openMusic(way) {
        musicSheet.way = way
        musicSheet.open()
    }
    function openExport() {
        if (App.library.selectedItem.path !== undefined && App.recording.phase === Phase.Idle)
            exportSheet.open()
    }
    function openAbout() {
        about.show()
        about.raise()
        about.requestActivate()
    }

    focus: true
    Keys.onPressed: event => {
        const preview = App.editor ? App.editor.preview : null
        const shift = event.modifiers & Qt.ShiftModifier
        event.accepted = preview !== null && (event.modifiers & ~Qt.ShiftModifier) === Qt.NoModifier
        if (!event.accepted)
            return
        if (event.key === Qt.Key_Space)
            preview.togglePlaying()
        else if (event.key === Qt.Key_Left || event.key === Qt.Key_Right) {
            const forwards = event.key === Qt.Key_Right ? 1 : -1
            if (shift)
                preview.skip(5 * forwards)
            else
                preview.step(forwards)
        } else if (event.key === Qt.Key_Home)
            preview.seekToStart()
        else if (event.key === Qt.Key_End)
            preview.seekToEnd()
        else if (event.key === Qt.Key_Z)
            App.editor.timeline.addZoomAtPlayhead()
        else
            event.accepted = false
    }
    Header {
        id: header

        width: parent.width
        libraryFolded: content.libraryFolded
        onLibraryToggled: content.libraryToggled()
        onExportRequested: content.openExport()
    }
    Library {
        id: library

        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        folded: content.libraryFolded
        onUnfoldRequested: content.libraryToggled()
    }
    Item {
        id: middle

        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 8
        anchors.left: library.right
        anchors.right: parent.right
        anchors.rightMargin: content.showInspector ? inspector.width : 8
        Banner {
            id: banner

            width: parent.width
            visible: text.length > 0
            text: App.messages.errorMessage
            onClosed: App.messages.clearErrorMessage()
        }
        Stage {
            id: stage

            anchors.top: banner.visible ? banner.bottom : parent.top
            anchors.topMargin: banner.visible ? 8 : 0
            anchors.bottom: timelineSlot.top
            anchors.bottomMargin: 8
            width: parent.width
            onExportRequested: content.openExport()
        }
        TimelineSlot {
            id: timelineSlot

            anchors.bottom: parent.bottom
            width: parent.width
        }
        Toast {
            anchors.horizontalCenter: stage.horizontalCenter
            anchors.bottom: stage.bottom
            anchors.bottomMargin: 69
            visible: App.messages.toast.length > 0
            text: App.messages.toast
            action: App.messages.toastAction
            onActed: App.messages.runToastAction()
        }
    }
    Inspector {
        id: inspector

        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        visible: content.showInspector
        enabled: visible
        tab: App.model.inspectorTab
        onPicked: tab => App.model.inspectorTab = tab
        onAboutRequested: content.openAbout()
        onMusicRequested: way => content.openMusic(way)
    }
    WelcomeSheet {
        visible: App.model.showWelcome
        onClosed: App.model.showWelcome = false
        onRecordRequested: App.recording.recordDisplay()
    }
    ExportSheet { id: exportSheet }
    MusicSheet { id: musicSheet }
    QuestionSheet {}
    AboutWindow { id: about }
    WindowShortcuts {
        onTabRequested: index => {
            App.model.showInspector = true
            App.model.inspectorTab = ["look", "edit", "pointer", "sound", "webcam", "text", "share", "record", "app"][index]
        }
        onSearchRequested: library.focusSearch()
        onExportRequested: content.openExport()
    }
    Connections {
        target: App.model
        ignoreUnknownSignals: true
        function onActionRequested(action) {
            if (action === "exportVideo")
                content.openExport()
            else if (action === "recordings")
                library.focusSearch()
            else if (action === "about")
                content.openAbout()
        }
    }
}
