import QtQuick
import QtQml
import Zento

// The window's own keys: the editable ones, and one for each tab.
Item {
    id: shortcuts

    readonly property var actions: ["recordScreen", "recordWindow", "recordArea", "screenshotScreen", "screenshotWindow",
        "screenshotArea", "scrollingCapture", "recordings", "exportVideo", "copyVideo", "toggleSidebar"]
    readonly property bool resting: App.shortcuts.recordingAction.length > 0

    signal tabRequested(int index)
    signal searchRequested()
    signal exportRequested()

    function run(action) {
        if (action === "recordings")
            searchRequested()
        else if (action === "exportVideo")
            exportRequested()
        else
            App.model.run(action)
    }

    Instantiator {
        model: shortcuts.actions
        delegate: Shortcut {
            required property string modelData

            enabled: !shortcuts.resting && sequence.length > 0
            sequence: { App.shortcuts.groups; return App.shortcuts.sequence(modelData) }
            context: Qt.WindowShortcut
            onActivated: shortcuts.run(modelData)
        }
    }
    Shortcut {
        enabled: App.model.canUndo ?? false
        sequences: [StandardKey.Undo]
        onActivated: App.model.undo()
    }
    Shortcut {
        enabled: App.model.canRedo ?? false
        sequences: ["Ctrl+Shift+Z", "Ctrl+Y"]
        onActivated: App.model.redo()
    }
    Instantiator {
        model: 9
        delegate: Shortcut {
            required property int index

            enabled: !shortcuts.resting
            sequence: "Ctrl+" + (index + 1)
            onActivated: shortcuts.tabRequested(index)
        }
    }
}
