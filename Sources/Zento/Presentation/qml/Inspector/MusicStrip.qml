import QtQuick
import QtQml
import Zento

// The whole music track, its beats, and the section the film uses between two handles.
FocusScope {
    id: strip

    property var track
    property string edge: "move" // what the keys move

    function clock(seconds) {
        const tenths = Math.round(seconds * 10)
        return Math.floor(tenths / 600) + ":" + (tenths % 600 / 10).toFixed(1).padStart(4, "0")
    }
    function goBy(count) {
        const edges = ["start", "move", "end"]
        edge = edges[Math.max(0, Math.min(2, edges.indexOf(edge) + count))]
    }

    height: 56
    activeFocusOnTab: true
    Accessible.role: Accessible.Slider
    Accessible.focusable: true
    Accessible.name: qsTr("Section of the music, %1 to %2").arg(clock(track?.startTime ?? 0)).arg(clock(track?.endTime ?? 0))
    Accessible.description: edge === "start" ? qsTr("Start") : edge === "end" ? qsTr("End") : qsTr("All of it")
    Keys.onPressed: event => {
        const seconds = event.modifiers & Qt.ControlModifier ? 1 : 0.1
        event.accepted = true
        if (event.key === Qt.Key_Escape && track.isDragged)
            track.cancelDrag()
        else if (event.key === Qt.Key_Up || event.key === Qt.Key_Down)
            goBy(event.key === Qt.Key_Up ? -1 : 1)
        else if (event.key === Qt.Key_Left || event.key === Qt.Key_Right)
            track.nudge(edge, event.key === Qt.Key_Left ? -seconds : seconds)
        else if (event.key === Qt.Key_Delete)
            track.reset()
        else if (event.key === Qt.Key_Menu || event.key === Qt.Key_F10)
            menu.popup(0, height)
        else
            event.accepted = false
    }
    Binding {
        target: strip.track
        property: "width"
        value: strip.width
        when: strip.track !== null
    }
    Rectangle {
        id: well

        width: parent.width
        height: 36
        radius: 6
        color: Theme.well
        LevelBars {
            y: 4
            width: parent.width
            height: parent.height - 8
            levels: strip.track?.levels ?? []
            color: Theme.laneSound
        }
        Repeater {
            model: strip.track?.beats ?? []
            delegate: Rectangle {
                required property real modelData

                x: Math.round(modelData)
                width: 1
                height: 4
                color: Theme.textTertiary
            }
        }
        component Unused: Rectangle {
            height: well.height
            visible: width > 0
            color: Qt.rgba(Theme.chrome.r, Theme.chrome.g, Theme.chrome.b, 0.72)
        }
        Unused { width: strip.track?.startX ?? 0 }
        Unused {
            x: strip.track?.endX ?? 0
            width: parent.width - x
        }
        Rectangle {
            x: strip.track?.startX ?? 0
            width: Math.max(4, (strip.track?.endX ?? 0) - x)
            height: parent.height
            radius: 6
            color: "transparent"
            border.width: 2
            border.color: Theme.primary
        }
        component Edge: Rectangle {
            property string name

            y: 2
            width: 4
            height: well.height - 4
            radius: 2
            color: strip.activeFocus && strip.edge === name ? Theme.accent : Theme.primary
        }
        Edge {
            x: Math.round(strip.track?.startX ?? 0)
            name: "start"
        }
        Edge {
            x: Math.round(strip.track?.endX ?? 0) - width
            name: "end"
        }
        FocusRing {
            visible: strip.activeFocus
            targetRadius: 6
        }
    }
    Caption {
        y: 40
        text: strip.clock(strip.track?.startTime ?? 0)
        family: Theme.monoFamily
        Accessible.ignored: true
    }
    Caption {
        anchors.right: parent.right
        y: 40
        text: strip.clock(strip.track?.endTime ?? 0)
        family: Theme.monoFamily
        Accessible.ignored: true
    }
    MouseArea {
        anchors.fill: well
        preventStealing: true
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        cursorShape: containsMouse && strip.track.resizesAt(mouseX) ? Qt.SizeHorCursor : Qt.PointingHandCursor
        onPressed: mouse => {
            strip.forceActiveFocus(Qt.MouseFocusReason)
            if (mouse.button === Qt.RightButton)
                menu.popup(mouse.x, mouse.y)
            else
                strip.track.press(mouse.x)
        }
        onPositionChanged: mouse => {
            if (mouse.buttons & Qt.LeftButton)
                strip.track.drag(mouse.x)
        }
        onReleased: strip.track.release()
        onCanceled: strip.track.cancelDrag()
    }
    Menu {
        id: menu

        MenuItem {
            text: qsTr("Use the whole track")
            enabled: strip.track?.isChosen ?? false
            onTriggered: strip.track.reset()
        }
    }
}
