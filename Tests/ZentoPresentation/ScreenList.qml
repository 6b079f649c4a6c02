import QtQuick
import Zento

// Each screen of the program by itself, in the state its picture shows.
QtObject {
    id: list

    property var app
    readonly property var screens: [
        { name: "main", width: 1440, height: 900, component: main, fill: true },
        { name: "main-minimum", width: 1100, height: 700, component: mainMinimum, fill: true },
        { name: "first-run", width: 1440, height: 900, component: firstRun, fill: false },
        { name: "messages", width: 1440, height: 900, component: messages, fill: true },
        { name: "question", width: 1440, height: 900, component: question, fill: true },
        { name: "export-sheet", width: 1440, height: 900, component: exportSheet, fill: true },
        { name: "music-sheet", width: 1440, height: 900, component: musicSheet, fill: true },
        { name: "export-progress", width: 1440, height: 900, component: exportProgress, fill: true },
        { name: "inspector-tabs", width: 1592, height: 1480, component: tabs, fill: true },
        { name: "capture-panel", width: 720, height: 364, component: capturePanels, fill: true },
        { name: "countdown-panel", width: 860, height: 360, component: countdowns, fill: true },
        { name: "stop-panel", width: 640, height: 160, component: stopPanels, fill: true },
        { name: "area-picker", width: 1440, height: 900, component: areaPicker, fill: true },
        { name: "window-picker", width: 1440, height: 900, component: windowPicker, fill: true },
        { name: "screenshot-editor", width: 1040, height: 720, component: screenshotEditor, fill: true },
        { name: "about", width: 400, height: 440, component: about, fill: true },
        { name: "components", width: 1240, height: 880, component: components, fill: true }
    ]

    property Component main: MainContent {}
    property Component screenshotEditor: ScreenshotContent {
        editor: QtObject {
            property string sizeText: "1424 × 801"
            property bool canUndo: true
            property bool canRedo: false
            property bool canShare: true
            property bool hasCrop: true
            property bool hasSelection: true
            property bool isBare: false
            property var tools: ["select", "arrow", "line", "box", "ellipse", "highlight", "pen", "blur", "spotlight", "badge", "text", "crop"]
                .map((id, index) => ({ id: id, key: "VALROHPBSNTC"[index], help: id }))
            property string tool: "select"
            property var palette: ["#FF3B30", "#FF9500", "#FFCC00", "#34C759", "#0A84FF", "#BF5AF2", "#FFFFFF", "#000000"]
            property string color: "#FF3B30"
            property real strokeWidth: 1
            property var handles: [Qt.point(300, 200), Qt.point(500, 220)]
            property rect selectionFrame
            property rect cropFrame
            property var writing: ({})
            property var presetGroups: ["Looks", "Gradients", "Mesh", "Patterns", "Solids", "Wallpapers"]
            property int presetGroup: 0
            property var presets: ["midnight", "paper", "indigo", "sunset", "meadow", "docs", "bare"]
                .map(id => ({ value: id, name: id, address: "shot/" + id }))
            property string presetID: "indigo"
            property real padding: 0.08
            property real cornerRadius: 24
            property real shadowOpacity: 0.5
            readonly property ShotView blank: ShotView {}
            property var picture: blank.picture
            property rect pictureFrame
            property string savedNote
            property string saveTo
            property string doubt
            property string notice
            signal noted()
            signal failed(string sentence)
            function setView(size, density) {}
        }
    }
    property Component mainMinimum: MainContent { libraryFolded: true }
    property Component firstRun: MainContent {
        Component.onCompleted: list.app.showWelcome = true
        Component.onDestruction: list.app.showWelcome = false
    }
    property Component messages: MainContent {
        Component.onCompleted: {
            list.app.messages.errorMessage = "Recording was stopped early: the disk is almost full. The microphone didn't record — check permissions in Record → Permissions, then try again."
            list.app.messages.toast = "Moved to the Trash"
            list.app.messages.toastAction = "Undo"
            list.app.recording.phase = 2
        }
        Component.onDestruction: {
            list.app.messages.errorMessage = ""
            list.app.messages.toast = ""
            list.app.recording.phase = 0
        }
    }
    property Component question: MainContent {
        Component.onCompleted: list.app.question.isOpen = true
        Component.onDestruction: list.app.question.isOpen = false
    }
    property Component exportSheet: MainContent {
        Component.onCompleted: openExport()
    }
    property Component musicSheet: MainContent {
        Component.onCompleted: {
            list.app.inspectorTab = "sound"
            openMusic("online")
        }
        Component.onDestruction: list.app.inspectorTab = "look"
    }
    property Component exportProgress: MainContent {
        Component.onCompleted: {
            list.app.recording.progress = 0.57
            list.app.recording.phase = 3
        }
        Component.onDestruction: list.app.recording.phase = 0
    }
    property Component tabs: Rectangle {
        color: Theme.base
        Component.onCompleted: {
            const settings = App.settings
            settings.titleCard = settings.endCard = settings.recordNarration = settings.recordWebcam = settings.muteNotifications = true
        }
        Repeater {
            model: [look, edit, pointer, sound, webcam, text, share, record, program]
            delegate: Rectangle {
                id: cell

                required property int index
                required property Component modelData

                x: 24 + index % 5 * 312
                y: index < 5 ? 24 : 680
                width: 296
                height: index < 5 ? 640 : 776
                radius: 12
                color: Theme.chrome
                border.width: 1
                border.color: Theme.line
                Loader {
                    x: 16
                    y: 8
                    width: 264
                    height: parent.height - 8
                    sourceComponent: cell.modelData
                }
            }
        }
        Rectangle {
            x: 1384
            y: 680
            width: 72
            height: 560
            radius: 12
            color: Theme.chrome
            border.width: 1
            border.color: Theme.line
            Rail {
                x: 8
                y: 8
                height: parent.height - 8
                current: "text"
            }
        }
    }
    property Component look: LookPane {}
    property Component edit: EditPane {}
    property Component pointer: PointerPane {}
    property Component sound: SoundPane {}
    property Component webcam: WebcamPane {}
    property Component text: TextPane {}
    property Component share: SharePane {}
    property Component record: RecordPane {}
    property Component program: AppPane {}

    component Desk: Item {
        Image {
            anchors.fill: parent
            asynchronous: true
            sourceSize: Qt.size(parent.width, parent.height)
            source: "image://swatch/0/background/lagoon"
        }
    }
    property Component capturePanels: Desk {
        CapturePanel { x: 40; y: 48 }
        CapturePanel { x: 40; y: 206; canRecord: false }
    }
    property Component countdowns: Desk {
        Repeater {
            model: [3, 2, 1]
            delegate: CountdownPanel {
                required property int index
                required property int modelData

                x: 50 + 270 * index
                y: 55
                remaining: modelData
            }
        }
    }
    property Component stopPanels: Desk {
        StopPanel { x: 40; y: 52; elapsed: "0:07" }
        StopPanel { x: 340; y: 52; elapsed: "12:46" }
    }
    property Component areaPicker: Desk {
        AreaPicker {
            anchors.fill: parent
            area: Qt.rect(438, 210, 704, 396)
        }
    }
    property Component windowPicker: Desk {
        WindowPicker {
            anchors.centerIn: parent
            width: implicitWidth
            height: implicitHeight
        }
    }
    property Component about: AboutPane { visible: true }
    property Component components: ComponentSheet {}
}
