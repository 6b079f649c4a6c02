import QtQuick
import QtQuick.Window
import Zento

// Every window of the program: the main one, and the panels that float above all others.
QtObject {
    id: root

    readonly property rect display: App.recording.panelDisplay
    property alias main: mainWindow

    property list<QtObject> all: [
        MainWindow {
            id: mainWindow

            visible: !App.recording.isApplicationHidden || goesToTaskbar
            onClosing: close => {
                close.accepted = App.model.isEnding === true
                if (!close.accepted)
                    App.model.closeWindow()
            }
        },
        FloatingWindow {
            id: countdown

            visible: App.recording.countdownVisible
            takesFocus: true
            display: root.display
            corner: 24
            panelWidth: 220
            panelHeight: 250
            panelY: display.height / 2 - 125
            title: qsTr("Zento countdown")
            CountdownPanel {
                remaining: App.recording.countdownRemaining
                seconds: Math.max(1, App.settings.countdownSeconds)
                onCancelled: App.recording.cancelCountdown()
            }
        },
        FloatingWindow {
            id: stop

            visible: App.recording.stopPanelVisible
            display: root.display
            corner: 28
            panelY: display.height - 80 - 56
            title: qsTr("Zento is recording")
            Component.onCompleted: App.model.excludeFromRecording(stop)
            StopPanel {
                elapsed: App.recording.elapsed
                onStopped: App.recording.stopRecording()
            }
        },
        FloatingWindow {
            id: capture

            visible: App.model.panel === FloatingPanel.CapturePanel
            takesFocus: true
            display: visible ? App.model.displayUnderPointer() : Qt.rect(0, 0, 1920, 1080)
            panelWidth: 640
            panelHeight: 110
            panelY: display.height - 110 - 80
            title: qsTr("Capture panel")
            onClosing: App.model.panel = FloatingPanel.NoPanel
            CapturePanel {
                onClosed: App.model.panel = FloatingPanel.NoPanel
                onPermissionsRequested: root.showPermissions()
            }
        },
        FloatingWindow {
            id: windows

            visible: App.model.panel === FloatingPanel.WindowPicker
            takesFocus: true
            display: visible ? App.model.displayUnderPointer() : Qt.rect(0, 0, 1920, 1080)
            panelWidth: 920
            panelHeight: 562
            panelY: (display.height - 562) / 2
            title: App.model.picksForShot ? qsTr("Choose a window to shoot") : qsTr("Choose a window to record")
            onClosing: App.model.panel = FloatingPanel.NoPanel
            Loader {
                anchors.fill: parent
                active: windows.visible
                focus: true
                sourceComponent: WindowPicker {
                    purpose: App.model.picksForShot ? qsTr("Choose a window to shoot") : qsTr("Choose a window to record")
                    onPicked: windowId => App.model.finishWindow(windowId)
                    onCancelled: App.model.panel = FloatingPanel.NoPanel
                }
            }
        },
        PanelShape { id: blending },
        // Where a window cannot let the desktop shine through, its picture is taken as soon as the
        // application's own windows are out of sight.
        Timer {
            id: sight

            property bool isFree: false

            interval: 300
            running: App.model.panel === FloatingPanel.AreaPicker && !areas.isReady
            onTriggered: isFree = true
        },
        Instantiator {
            id: areas

            // A picture the model has is marked; else the display itself, through the window.
            readonly property bool hasPicture: App.model.choosesInDialog === true
            readonly property bool isReady: hasPicture || blending.isBlended

            active: App.model.panel === FloatingPanel.AreaPicker && (isReady || sight.isFree)
            onActiveChanged: if (!active) sight.isFree = false
            model: active ? App.model.displays() : []
            delegate: Window {
                id: shade

                required property rect modelData
                // 1 but where the desktop places the window on another display than the picture's.
                readonly property real stretch: areas.hasPicture ? modelData.width / Math.max(1, width) : 1

                flags: areas.hasPicture ? Qt.Window | Qt.FramelessWindowHint
                    : Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.BypassWindowManagerHint
                screen: root.screenAt(modelData)
                visible: true
                visibility: areas.hasPicture ? Window.FullScreen : Window.Windowed
                color: "transparent"
                x: modelData.x
                y: modelData.y
                width: modelData.width
                height: modelData.height
                Component.onCompleted: requestActivate()
                Image {
                    anchors.fill: parent
                    cache: false
                    source: areas.hasPicture || !blending.isBlended ? "image://display/" + shade.modelData.x + "/" + shade.modelData.y : ""
                }
                AreaPicker {
                    anchors.fill: parent
                    purpose: App.model.picksForShot ? qsTr("Drag over the part to shoot") : qsTr("Drag over the part to record")
                    onPicked: area => App.model.finishArea(Qt.rect(area.x * shade.stretch + shade.modelData.x,
                        area.y * shade.stretch + shade.modelData.y, area.width * shade.stretch, area.height * shade.stretch))
                    onCancelled: App.model.cancelArea()
                }
            }
        },
        Connections {
            target: App.recording
            function onIsApplicationHiddenChanged() {
                if (!App.recording.isApplicationHidden)
                    mainWindow.leaveTaskbar()
                else if (App.model.hidesInTaskbar === true)
                    mainWindow.goToTaskbar()
            }
            function onActivationRequested() {
                mainWindow.show()
                mainWindow.raise()
                mainWindow.requestActivate()
            }
        }
    ]

    function screenAt(display) {
        for (let i = 0; i < Application.screens.length; ++i) {
            const screen = Application.screens[i]
            if (screen.virtualX === display.x && screen.virtualY === display.y)
                return screen
        }
        return Application.screens[0]
    }
    function showPermissions() {
        App.model.showInspector = true
        App.model.inspectorTab = "record"
        mainWindow.show()
        mainWindow.raise()
        mainWindow.requestActivate()
    }
}
