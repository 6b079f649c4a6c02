import QtQuick
import QtQuick.Templates as T
import Zento

// A sheet in the middle of the window. Escape closes it; Enter does what `accept` does.
T.Popup {
    id: sheet

    property string title
    property real sheetWidth: 560
    property Item firstFocus

    signal accepted()

    parent: T.Overlay.overlay
    x: Math.round(((parent?.width ?? 0) - width) / 2)
    y: Math.round(((parent?.height ?? 0) - height) / 2)
    width: sheetWidth
    height: Math.min(implicitHeight, (parent?.height ?? 700) - 32)
    implicitHeight: contentItem.implicitHeight
    modal: true
    focus: true
    dim: true
    padding: 0
    closePolicy: T.Popup.CloseOnEscape
    // At once, not after the transition: a key pressed meanwhile belongs to the sheet.
    onVisibleChanged: if (visible && firstFocus) firstFocus.forceActiveFocus(Qt.TabFocusReason)
    background: Panel {
        elevation: Theme.sheetElevation
        radius: Theme.radiusSheet
    }
    T.Overlay.modal: Rectangle {
        color: Theme.scrim
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.durationCalm; easing.type: Easing.BezierSpline; easing.bezierCurve: [0.2, 0, 0, 1, 1, 1] }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; to: 0; duration: Theme.reducedMotion ? 0 : Theme.durationQuick }
    }
}
