import QtQuick
import Zento

// The top of the window: what is open, and what can be done with all of it.
Item {
    id: header

    property bool libraryFolded: false
    readonly property var item: App.library.selectedItem
    readonly property bool hasItem: item.path !== undefined
    readonly property bool isExporting: App.recording.phase === Phase.Rendering || App.recording.phase === Phase.ExportingGif

    signal libraryToggled()
    signal exportRequested()

    function date(when) {
        if (!when || isNaN(when))
            return ""
        const day = when.toDateString() === new Date().toDateString() ? qsTr("Today")
            : when.toLocaleDateString(Qt.locale(), Locale.ShortFormat)
        return day + ", " + when.toLocaleTimeString(Qt.locale(), Locale.ShortFormat)
    }
    function length(duration) {
        const seconds = Math.round(duration)
        return Math.floor(seconds / 60) + ":" + String(seconds % 60).padStart(2, "0")
    }

    height: Theme.sizeHeader
    Row {
        x: 18
        height: parent.height
        spacing: 8
        Logo { anchors.verticalCenter: parent.verticalCenter }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: "Zento"
            type: Theme.titleType
        }
    }
    IconButton {
        id: fold

        x: header.libraryFolded ? 108 : Theme.sizeLibrary - 40
        anchors.verticalCenter: parent.verticalCenter
        iconName: "sidebar-left"
        text: header.libraryFolded ? qsTr("Unfold the library") : qsTr("Fold the library")
        onClicked: header.libraryToggled()
    }
    Column {
        visible: header.hasItem
        anchors.left: fold.right
        anchors.leftMargin: header.libraryFolded ? 12 : 20
        anchors.right: actions.left
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        Label {
            width: parent.width
            text: header.item.name ?? ""
            type: Theme.titleType
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Caption {
            width: parent.width
            lineHeight: 14
            text: header.hasItem
                ? [header.date(header.item.date), header.item.appName,
                    qsTr("%1 recorded").arg(header.length(header.item.duration))].filter(part => part && part.length > 0).join(" · ")
                : ""
        }
    }
    Row {
        id: actions

        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4
        IconButton {
            iconName: "undo"
            enabled: App.model.canUndo ?? false
            text: App.model.undoText ?? qsTr("Undo")
            shortcut: qsTr("Ctrl Z")
            onClicked: App.model.undo()
        }
        IconButton {
            iconName: "redo"
            enabled: App.model.canRedo ?? false
            text: App.model.redoText ?? qsTr("Redo")
            shortcut: qsTr("Ctrl Shift Z")
            onClicked: App.model.redo()
        }
        Gap {}
        IconButton {
            id: screenshot

            iconName: "screenshot"
            text: qsTr("Take a screenshot")
            onClicked: screenshotMenu.popup(0, height + 4)
            Menu {
                id: screenshotMenu

                MenuItem {
                    iconName: "screen"
                    text: qsTr("Screen")
                    shortcut: App.shortcuts.keys("screenshotScreen").join(" ")
                    onTriggered: App.model.run("screenshotScreen")
                }
                MenuItem {
                    iconName: "window"
                    visible: App.permissions.window
                    height: visible ? implicitHeight : 0
                    text: qsTr("Window")
                    shortcut: App.shortcuts.keys("screenshotWindow").join(" ")
                    onTriggered: App.model.run("screenshotWindow")
                }
                MenuItem {
                    iconName: "area"
                    text: qsTr("Area")
                    shortcut: App.shortcuts.keys("screenshotArea").join(" ")
                    onTriggered: App.model.run("screenshotArea")
                }
                MenuItem {
                    iconName: "scrolling"
                    visible: App.permissions.scrolling
                    height: visible ? implicitHeight : 0
                    text: qsTr("Scrolling")
                    shortcut: App.shortcuts.keys("scrollingCapture").join(" ")
                    onTriggered: App.model.run("scrollingCapture")
                }
            }
        }
        IconButton {
            iconName: "share"
            enabled: header.hasItem
            text: qsTr("Share")
            onClicked: if (App.sharing.shareLastExport()) shareMenu.popup(0, height + 4); else App.model.inspectorTab = "share"
            ShareMenu { id: shareMenu }
        }
        Gap { size: 4 }
        Button {
            anchors.verticalCenter: parent.verticalCenter
            visible: !header.isExporting
            enabled: header.hasItem && App.recording.phase === Phase.Idle
            kind: Button.Primary
            iconName: "export"
            text: qsTr("Export")
            onClicked: header.exportRequested()
        }
        Button {
            anchors.verticalCenter: parent.verticalCenter
            visible: header.isExporting
            leftPadding: 38
            rightPadding: 12
            text: qsTr("Exporting %1 %").arg(Math.floor(App.recording.progress * 100 + 0.001))
            onClicked: header.exportRequested()
            Ring {
                x: 12
                anchors.verticalCenter: parent.verticalCenter
                width: 18
                height: 18
                thickness: 2.5
                fraction: App.recording.progress
            }
        }
        Gap { size: 4 }
        IconButton {
            iconName: "sidebar-right"
            text: App.model.showInspector ? qsTr("Hide the settings") : qsTr("Show the settings")
            shortcut: { App.shortcuts.groups; return App.shortcuts.keys("toggleSidebar").join(" ") }
            onClicked: App.model.showInspector = !App.model.showInspector
        }
    }
}
