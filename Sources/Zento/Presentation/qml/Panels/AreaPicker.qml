import QtQuick
import Zento

// Marks an area of a display with the pointer, or with the arrow keys: they move, with Shift they
// stretch, with Control by a pixel.
FocusScope {
    id: picker

    property rect area: Qt.rect(0, 0, 0, 0)
    property bool marking: false
    property string purpose: qsTr("Drag over the part to record")
    readonly property bool hasArea: area.width > 0 && area.height > 0
    readonly property real density: Screen.devicePixelRatio

    signal picked(rect area)
    signal cancelled()

    function nudge(dx, dy, event) {
        const step = event.modifiers & Qt.ControlModifier ? 1 : 20
        if (!hasArea)
            area = Qt.rect(width / 4, height / 4, width / 2, height / 2)
        else if (event.modifiers & Qt.ShiftModifier)
            area = Qt.rect(area.x, area.y, Math.max(41, Math.min(width - area.x, area.width + dx * step)), Math.max(41, Math.min(height - area.y, area.height + dy * step)))
        else
            area = Qt.rect(Math.max(0, Math.min(width - area.width, area.x + dx * step)), Math.max(0, Math.min(height - area.height, area.y + dy * step)), area.width, area.height)
    }

    focus: true
    Accessible.role: Accessible.Dialog
    Accessible.name: purpose
    Accessible.description: hasArea ? qsTr("%1 by %2 points").arg(Math.round(area.width)).arg(Math.round(area.height)) : qsTr("Escape to cancel, arrow keys to mark, Enter to start")
    Keys.onEscapePressed: cancelled()
    Keys.onReturnPressed: if (hasArea) picked(area)
    Keys.onEnterPressed: if (hasArea) picked(area)
    Keys.onLeftPressed: event => nudge(-1, 0, event)
    Keys.onRightPressed: event => nudge(1, 0, event)
    Keys.onUpPressed: event => nudge(0, -1, event)
    Keys.onDownPressed: event => nudge(0, 1, event)

    // Four bars around the marked area darken the rest.
    component Shade: Rectangle { color: Qt.rgba(0, 0, 0, 0.25) }
    Shade { width: picker.width; height: picker.hasArea ? picker.area.y : picker.height }
    Shade { y: picker.area.y; width: picker.area.x; height: picker.area.height }
    Shade { x: picker.area.x + picker.area.width; y: picker.area.y; width: picker.width - x; height: picker.area.height }
    Shade { y: picker.area.y + picker.area.height; width: picker.width; height: picker.hasArea ? picker.height - y : 0 }
    Item {
        x: picker.area.x
        y: picker.area.y
        width: picker.area.width
        height: picker.area.height
        visible: picker.hasArea
        Rectangle {
            anchors.fill: parent
            anchors.margins: -2
            color: "transparent"
            border.width: 3
            border.color: Qt.rgba(12 / 255, 13 / 255, 17 / 255, 0.5)
        }
        Rectangle {
            anchors.fill: parent
            anchors.margins: -1
            color: "transparent"
            border.width: 1
            border.color: "white"
        }
        Repeater {
            model: 4
            delegate: Item {
                required property int index
                readonly property bool isRight: index % 2 === 1
                readonly property bool isLow: index > 1

                x: isRight ? parent.width - 23 : -3
                y: isLow ? parent.height - 23 : -3
                width: 26
                height: 26
                visible: picker.area.width > 60 && picker.area.height > 60
                Rectangle { x: parent.isRight ? 21 : 0; width: 5; height: 26; radius: 2; color: "white" }
                Rectangle { y: parent.isLow ? 21 : 0; width: 26; height: 5; radius: 2; color: "white" }
            }
        }
    }
    Rectangle {
        visible: picker.hasArea
        x: Math.min(picker.width - width - 8, picker.area.x + picker.area.width + 12)
        y: Math.min(picker.height - height - 8, picker.area.y + picker.area.height + 12)
        width: size.implicitWidth + 20
        height: 28
        radius: 8
        color: "#E60C0D11"
        Label {
            id: size

            anchors.centerIn: parent
            text: Math.round(picker.area.width * picker.density) + " × " + Math.round(picker.area.height * picker.density)
            type: Theme.timeType
            font.pixelSize: 12
            color: "white"
        }
    }
    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 64
        width: hint.implicitWidth + 28
        height: 40
        radius: 12
        color: "#E60C0D11"
        Row {
            id: hint

            anchors.centerIn: parent
            spacing: 12
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: picker.purpose
                weight: 500
                color: "white"
            }
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 1
                height: 16
                color: Qt.rgba(1, 1, 1, 0.4)
            }
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 30
                height: 20
                radius: 5
                color: Qt.rgba(1, 1, 1, 0.12)
                Caption {
                    anchors.centerIn: parent
                    text: qsTr("Esc")
                    color: "white"
                    weight: 500
                }
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("to cancel")
                color: Qt.rgba(1, 1, 1, 0.8)
            }
        }
    }
    MouseArea {
        property point start

        anchors.fill: parent
        cursorShape: Qt.CrossCursor
        onPressed: mouse => {
            start = Qt.point(mouse.x, mouse.y)
            picker.area = Qt.rect(mouse.x, mouse.y, 0, 0)
            picker.marking = true
        }
        onPositionChanged: mouse => {
            const x = Math.max(0, Math.min(width, mouse.x))
            const y = Math.max(0, Math.min(height, mouse.y))
            picker.area = Qt.rect(Math.min(start.x, x), Math.min(start.y, y), Math.abs(x - start.x), Math.abs(y - start.y))
        }
        onReleased: {
            picker.marking = false
            picker.picked(picker.area)
        }
    }
}
