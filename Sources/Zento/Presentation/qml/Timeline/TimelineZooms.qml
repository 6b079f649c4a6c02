import QtQuick
import Zento

// The zoom lane. One pointer area serves all blocks: a replan may make them anew under a drag.
FocusScope {
    id: lane

    property var line
    property var clock
    property real current: -1 // the zoom that has the keyboard
    property real hovered: -1
    readonly property var levels: [1.35, 1.6, 1.9, 2.1]

    function zoom(id) {
        return id < 0 ? null : line.zooms.find(entry => entry.id === id) ?? null
    }
    function goBy(count) {
        const all = line.zooms
        if (all.length === 0)
            return
        let at = all.findIndex(entry => entry.id === current)
        at = at < 0 ? 0 : Math.max(0, Math.min(all.length - 1, at + count))
        current = all[at].id
    }
    function openMenu(id, x, y) {
        const entry = zoom(id)
        if (entry) {
            blockMenu.zoom = entry
            blockMenu.popup(x, y)
        } else {
            laneMenu.popup(x, y)
        }
    }

    objectName: "zoomLane"
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Zooms")
    onActiveFocusChanged: if (activeFocus && !zoom(current)) goBy(0)
    Keys.onPressed: event => {
        const entry = zoom(current)
        const stretches = event.modifiers & Qt.ShiftModifier
        const seconds = event.modifiers & Qt.ControlModifier ? 1 : 0.1
        event.accepted = true
        if (event.key === Qt.Key_Escape && line.draggedZoom >= 0)
            line.cancelDrag()
        else if (event.key === Qt.Key_Up)
            goBy(-1)
        else if (event.key === Qt.Key_Down)
            goBy(1)
        else if (event.key === Qt.Key_Menu || event.key === Qt.Key_F10)
            openMenu(current, entry?.x ?? 0, lane.height)
        else if (!entry)
            event.accepted = false
        else if (event.key === Qt.Key_Left || event.key === Qt.Key_Right) {
            const by = event.key === Qt.Key_Left ? -seconds : seconds
            if (stretches)
                line.stretchZoom(current, by)
            else
                line.nudgeZoom(current, by)
        } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            line.toggleZoom(current)
        else if (event.key === Qt.Key_Delete)
            line.deleteZoom(current)
        else if (event.key >= Qt.Key_1 && event.key <= Qt.Key_4 && event.modifiers === Qt.NoModifier)
            line.setZoomLevel(current, levels[event.key - Qt.Key_1])
        else
            event.accepted = false
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusControl
        color: Theme.well
        opacity: 0.6
    }
    Caption {
        anchors.centerIn: parent
        visible: lane.line.zooms.length === 0 && lane.line.duration > 0
        text: qsTr("No zooms — double-click to add one")
    }
    Repeater {
        model: lane.line.zooms
        delegate: ZoomBlock {
            required property var modelData
            readonly property bool isDragged: modelData.id === lane.line.draggedZoom
            readonly property real delta: isDragged ? lane.line.zoomDragDelta : 0
            readonly property bool stretches: isDragged && lane.line.isStretching

            zoom: modelData
            x: modelData.x + (stretches ? 0 : delta)
            y: 2
            z: isDragged ? 1 : 0
            width: Math.max(Theme.timelineZoomBarMin, modelData.width + (stretches ? delta : 0))
            height: Theme.timelineZoomBar
            isHovered: lane.hovered === modelData.id
            isFocused: lane.activeFocus && lane.current === modelData.id
            isLifted: isDragged
            Accessible.role: Accessible.ListItem
            Accessible.onPressAction: lane.line.toggleZoom(modelData.id)
            Accessible.name: qsTr("Zoom %1, %2 to %3 seconds, %4")
                .arg(modelData.zoom + (modelData.title.length > 0 ? ", " + modelData.title : ""))
                .arg(modelData.time.toFixed(1)).arg(modelData.timeEnd.toFixed(1))
                .arg(modelData.enabled ? qsTr("on") : qsTr("off"))
        }
    }
    Rectangle { // where the dragged block was
        readonly property var entry: lane.zoom(lane.line.draggedZoom)

        visible: entry !== null
        x: entry?.x ?? 0
        y: 2
        width: entry?.width ?? 0
        height: Theme.timelineZoomBar
        radius: 6
        color: "transparent"
        border.color: Theme.lineStrong
    }
    TimeBubble {
        visible: lane.line.draggedZoom >= 0
        y: -20
        limit: lane.width
        centerX: lane.line.positionOf(lane.line.zoomDragTime)
        text: lane.clock(lane.line.zoomDragTime)
    }
    MouseArea {
        id: pointer

        property real startX: 0
        property real pressedZoom: -1

        anchors.fill: parent
        preventStealing: true
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        cursorShape: containsMouse && lane.hovered >= 0
            ? (lane.line.stretchesAt(mouseX) ? Qt.SizeHorCursor : Qt.PointingHandCursor) : Qt.ArrowCursor
        onPressed: mouse => {
            startX = mouse.x
            pressedZoom = lane.line.zoomAt(mouse.x)
            lane.forceActiveFocus(Qt.MouseFocusReason)
            if (pressedZoom >= 0)
                lane.current = pressedZoom
            if (mouse.button === Qt.RightButton)
                lane.openMenu(pressedZoom, mouse.x, mouse.y)
        }
        onPositionChanged: mouse => {
            lane.hovered = lane.line.zoomAt(mouse.x)
            if (!(mouse.buttons & Qt.LeftButton) || pressedZoom < 0)
                return
            if (lane.line.draggedZoom < 0 && Math.abs(mouse.x - startX) >= Theme.timelineDragStart)
                lane.line.beginZoomDrag(startX)
            lane.line.dragZoom(mouse.x)
        }
        onReleased: mouse => {
            if (lane.line.draggedZoom >= 0)
                lane.line.endZoomDrag()
            else if (mouse.button === Qt.LeftButton && pressedZoom >= 0 && Math.abs(mouse.x - startX) < Theme.timelineDragStart)
                lane.line.toggleZoom(pressedZoom)
            pressedZoom = -1
        }
        onCanceled: lane.line.cancelDrag()
        onExited: lane.hovered = -1
        onDoubleClicked: mouse => {
            if (mouse.button === Qt.LeftButton && lane.line.zoomAt(mouse.x) < 0)
                lane.line.addZoomAt(mouse.x)
        }
    }
    Item {
        readonly property var entry: lane.zoom(lane.hovered)

        x: entry?.x ?? 0
        width: entry?.width ?? 0
        height: parent.height
        Tip {
            text: qsTr("Zoom %1× · drag to move · drag the right edge to stretch · right-click to delete or change level").arg(parent.entry?.zoom ?? 0)
            shown: parent.entry !== null && !pointer.pressed && lane.line.draggedZoom < 0
        }
    }
    Menu {
        id: blockMenu

        property var zoom: null

        MenuItem {
            enabled: false
            text: qsTr("Zoom level")
        }
        LevelItem { level: lane.levels[0] }
        LevelItem { level: lane.levels[1] }
        LevelItem { level: lane.levels[2] }
        LevelItem { level: lane.levels[3] }
        MenuLine {}
        MenuItem {
            text: blockMenu.zoom?.enabled ? qsTr("Switch Off") : qsTr("Switch On")
            onTriggered: lane.line.toggleZoom(blockMenu.zoom.id)
        }
        MenuItem {
            visible: blockMenu.zoom?.edited ?? false
            height: visible ? implicitHeight : 0
            text: qsTr("Reset Edits")
            onTriggered: lane.line.resetZoom(blockMenu.zoom.id)
        }
        MenuLine {}
        MenuItem {
            destructive: true
            text: qsTr("Delete Zoom")
            shortcut: qsTr("Del")
            onTriggered: lane.line.deleteZoom(blockMenu.zoom.id)
        }
    }
    Menu {
        id: laneMenu

        MenuItem {
            text: qsTr("Add Zoom Here")
            shortcut: qsTr("Z")
            onTriggered: lane.line.addZoomAtPlayhead()
        }
        MenuItem {
            visible: lane.line.deletedZooms > 0
            height: visible ? implicitHeight : 0
            text: lane.line.deletedZooms === 1 ? qsTr("Restore 1 Deleted Zoom")
                : qsTr("Restore %1 Deleted Zooms").arg(lane.line.deletedZooms)
            onTriggered: lane.line.restoreDeletedZooms()
        }
        MenuLine {}
        UndoItem {}
        UndoItem { isRedo: true }
    }

    component LevelItem: MenuItem {
        property real level

        iconName: Math.abs((blockMenu.zoom?.zoom ?? 0) - level) < 0.01 ? "check" : ""
        text: level + "×"
        onTriggered: lane.line.setZoomLevel(blockMenu.zoom.id, level)
    }
}
