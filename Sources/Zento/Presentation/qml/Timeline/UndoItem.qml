import QtQuick
import Zento

// Undo or redo with the name of its step.
MenuItem {
    property bool isRedo: false

    text: (isRedo ? App.model.redoText : App.model.undoText) ?? ""
    shortcut: isRedo ? qsTr("Ctrl Shift Z") : qsTr("Ctrl Z")
    enabled: (isRedo ? App.model.canRedo : App.model.canUndo) ?? false
    onTriggered: isRedo ? App.model.redo() : App.model.undo()
}
