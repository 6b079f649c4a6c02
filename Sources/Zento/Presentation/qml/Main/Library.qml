import QtQuick
import QtQuick.Templates as T
import Zento

// The recordings, and the button that makes one. Folded it shows pictures alone.
FocusScope {
    id: library

    property bool folded: false
    readonly property var model: App.library
    readonly property bool isLive: App.recording.phase === Phase.Recording
    readonly property string missing: {
        const permissions = App.permissions
        const names = []
        if (!permissions.screen)
            names.push(qsTr("Screen"))
        if (permissions.needsInput && !permissions.input)
            names.push(qsTr("Clicks and keys"))
        if (permissions.needsInput && !permissions.accessibility)
            names.push(qsTr("Accessibility"))
        return names.length > 0 ? qsTr("Still needed to record: %1. See Record.").arg(names.join(", ")) : ""
    }

    signal unfoldRequested()

    function focusSearch() {
        if (folded)
            unfoldRequested()
        search.forceActiveFocus(Qt.ShortcutFocusReason)
        search.selectAll()
    }

    width: folded ? Theme.sizeLibraryMin : Theme.sizeLibrary
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Recordings")

    RecordButton {
        id: record

        x: library.folded ? 8 : 12
        y: 4
        width: library.folded ? 56 : library.width - 24 - 48
        folded: library.folded
        live: library.isLive
        elapsed: App.recording.elapsed
        missing: library.missing
        asks: App.model.choosesInDialog === true
        hasWindows: App.permissions.window
        onRecordScreen: App.recording.recordDisplay()
        onChooseScreen: App.recording.chooseDisplay()
        onRecordWindow: App.model.pickWindow()
        onRecordArea: App.model.pickArea()
        onStop: App.recording.stopRecording()
    }
    IconButton {
        visible: !library.folded
        x: library.width - 12 - width
        y: 4
        side: 40
        iconSize: 20
        filled: true
        iconName: "screenshot"
        text: qsTr("Capture panel")
        onClicked: App.model.showCapturePanel()
    }
    SearchBox {
        id: search

        visible: !library.folded
        x: 12
        y: 52
        width: library.width - 24
        label: qsTr("Search recordings")
        placeholderText: label
        keys: { App.shortcuts.groups; return App.shortcuts.keys("recordings") }
        onEdited: text => library.model.search = text
        onLeaving: list.forceActiveFocus(Qt.OtherFocusReason)
        Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
    }
    IconButton {
        visible: library.folded
        x: 20
        y: 56
        iconName: "search"
        text: qsTr("Search recordings")
        onClicked: library.focusSearch()
    }
    ListView {
        id: list

        property bool keyboardFocus: activeFocus && keyboardUsed
        property bool keyboardUsed: false

        anchors.fill: parent
        anchors.leftMargin: library.folded ? 0 : 8
        anchors.rightMargin: library.folded ? 0 : 8
        anchors.topMargin: library.folded ? 96 : 84
        anchors.bottomMargin: library.folded ? 8 : 41
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0
        keyNavigationEnabled: false
        reuseItems: false
        model: library.model
        currentIndex: library.model.selectedRow
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Recordings")
        T.ScrollBar.vertical: ScrollBar {}
        section.property: library.folded ? "" : "section"
        section.delegate: Item {
            required property string section

            width: list.width
            height: 32
            Caption {
                x: 12
                y: 12
                text: parent.section
                weight: 600
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
        }
        delegate: LibraryRow {
            width: list.width
            folded: library.folded
            onMenuRequested: (x, y) => {
                library.model.select(path)
                menu.path = path
                menu.hasRender = hasRender
                menu.popup(this, width + x, y)
            }
        }

        function step(by) {
            const row = Math.max(0, Math.min(count - 1, currentIndex + by))
            const item = itemAtIndex(row)
            if (item)
                library.model.select(item.path)
            else
                positionViewAtIndex(row, ListView.Contain)
        }
        onCurrentIndexChanged: positionViewAtIndex(currentIndex, ListView.Contain)
        onActiveFocusChanged: keyboardUsed = activeFocus
        Keys.onUpPressed: { keyboardUsed = true; step(-1) }
        Keys.onDownPressed: { keyboardUsed = true; step(1) }
        Keys.onPressed: event => {
            const path = library.model.selected
            if (path.length === 0)
                return
            if (event.key === Qt.Key_F2)
                library.model.renaming = path
            else if (event.key === Qt.Key_Delete)
                library.model.moveToTrash(path)
            else if (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier || event.key === Qt.Key_Menu)
                currentItem?.menuRequested(-60, 40)
            else
                return
            event.accepted = true
        }
    }
    RecordingMenu { id: menu }
    Column {
        anchors.centerIn: list
        width: list.width - 32
        spacing: 8
        visible: list.count === 0 && !library.model.isLoading && !library.folded
        Brackets {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 64
            height: 44
        }
        Gap {}
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: library.model.totalCount > 0 ? qsTr("Nothing found") : qsTr("No recordings yet")
            type: Theme.strongType
        }
        Caption {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: library.model.totalCount > 0 ? qsTr("No recording matches the search.") : qsTr("They appear here, newest first.")
        }
    }
    Item {
        visible: !library.folded
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 12
        height: 25
        Divider { width: parent.width }
        Caption {
            x: 8
            y: 9
            text: library.model.totalCount === 1 ? qsTr("1 recording") : qsTr("%1 recordings").arg(library.model.totalCount)
        }
        Caption {
            anchors.right: parent.right
            anchors.rightMargin: 8
            y: 9
            text: App.model.freeSpace ?? ""
        }
    }
}
