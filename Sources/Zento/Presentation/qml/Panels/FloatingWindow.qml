import QtQuick
import QtQuick.Window
import Zento

// A panel above ordinary windows, without a frame of its own. Its window is larger than the panel by
// the room its shadow needs.
Window {
    id: panel

    property rect display: Qt.rect(0, 0, 1920, 1080) // where it belongs, in the desktop's points
    property real panelWidth: 260
    property real panelHeight: 56
    property real panelX: (display.width - panelWidth) / 2 // from the display's corner
    property real panelY: 0
    property bool takesFocus: false
    property real corner: 16
    readonly property real room: shape.isBlended ? 48 : 1 // at least its hairline
    default property alias content: body.data

    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
        | (takesFocus ? 0 : Qt.WindowDoesNotAcceptFocus)
    color: "transparent"
    width: panelWidth + 2 * room
    height: panelHeight + 2 * room
    x: display.x + panelX - room
    y: display.y + panelY - room
    PanelShape {
        id: shape

        window: panel
        radius: panel.corner + 1
    }
    Item {
        id: body

        x: panel.room
        y: panel.room
        width: panel.panelWidth
        height: panel.panelHeight
    }
}
