import QtQuick
import Zento

// The film's pictures, its cuts, and the trim with its two handles.
FocusScope {
    id: track

    property var line
    property var clock

    Item {
        anchors.fill: parent
        clip: true
        Rectangle {
            anchors.fill: parent
            radius: 6
            color: Theme.well
        }
        ThumbnailStrip {
            anchors.fill: parent
            media: App.editor.media
            opacity: Theme.dark ? 0.74 : 1
        }
        Removed {
            width: track.line.trimStartX
            height: parent.height
        }
        Removed {
            x: track.line.trimEndX
            width: parent.width - x
            height: parent.height
        }
    }
    Repeater {
        model: track.line.cuts
        delegate: Item {
            id: cut

            required property var modelData

            x: Math.round(modelData.x)
            height: track.height
            Accessible.role: Accessible.Graphic
            Accessible.name: modelData.isOnBeat ? qsTr("Cut on the beat") : qsTr("Cut")
            Repeater {
                model: 8
                delegate: Rectangle {
                    required property int index

                    y: index * 7 + 2
                    width: 1
                    height: 4
                    color: Theme.primary
                }
            }
            Rectangle { // round and green on a beat, else a grey corner
                readonly property int side: cut.modelData.isOnBeat ? 9 : 6

                x: -Math.floor(side / 2)
                y: x
                width: side
                height: side
                radius: cut.modelData.isOnBeat ? side / 2 : 0
                rotation: cut.modelData.isOnBeat ? 0 : 45
                color: cut.modelData.isOnBeat ? Theme.laneSound : Theme.textTertiary
                border.width: cut.modelData.isOnBeat ? 1 : 0
                border.color: Theme.base
            }
        }
    }
    Rectangle { // what is kept
        x: track.line.trimStartX
        width: Math.max(0, track.line.trimEndX - x)
        height: parent.height
        visible: track.line.duration > 0
        color: "transparent"
        border.width: 2
        border.color: Theme.primary
    }
    MouseArea {
        anchors.fill: parent
        anchors.leftMargin: -Theme.timelineTrimHandle
        anchors.rightMargin: -Theme.timelineTrimHandle
        preventStealing: true
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        cursorShape: {
            const x = mouseX - Theme.timelineTrimHandle
            const reach = Theme.timelineTrimHit / 2
            return Math.abs(x - track.line.trimStartX) < reach || Math.abs(x - track.line.trimEndX) < reach
                ? Qt.SizeHorCursor : Qt.ArrowCursor
        }
        onPressed: mouse => {
            if (mouse.button === Qt.RightButton)
                menu.popup(mouse.x, mouse.y)
            else
                track.line.pressVideo(mouse.x - Theme.timelineTrimHandle)
        }
        onPositionChanged: mouse => {
            if (mouse.buttons & Qt.LeftButton)
                track.line.dragVideo(mouse.x - Theme.timelineTrimHandle)
        }
        onReleased: track.line.releaseVideo()
        onCanceled: track.line.releaseVideo()
        Menu {
            id: menu

            MenuItem {
                text: qsTr("Reset trim")
                enabled: track.line.isTrimmed
                onTriggered: track.line.resetTrim()
            }
            MenuLine {}
            UndoItem {}
            UndoItem { isRedo: true }
        }
    }
    TrimHandle {
        x: track.line.trimStartX - width
        height: parent.height
        visible: track.line.duration > 0
        part: "start"
        name: qsTr("Start of the film")
        time: track.clock(track.line.trimStartTime)
        onNudged: (part, seconds) => track.line.nudgeTrim(part, seconds)
        onResetRequested: track.line.resetTrim()
        onMenuRequested: menu.popup(x, track.height)
    }
    TrimHandle {
        x: track.line.trimEndX
        height: parent.height
        visible: track.line.duration > 0
        part: "end"
        name: qsTr("End of the film")
        time: track.clock(track.line.trimEndTime)
        onNudged: (part, seconds) => track.line.nudgeTrim(part, seconds)
        onResetRequested: track.line.resetTrim()
        onMenuRequested: menu.popup(x, track.height)
    }
    TimeBubble {
        visible: track.line.trimDrag.length > 0
        y: -24
        limit: track.width
        centerX: track.line.trimDrag === "end" ? track.line.trimEndX : track.line.trimStartX
        text: track.clock(track.line.trimDrag === "end" ? track.line.trimEndTime : track.line.trimStartTime)
    }
    Keys.onEscapePressed: event => {
        event.accepted = track.line.trimDrag.length > 0
        track.line.cancelDrag()
    }

    component Removed: Hatch {
        visible: track.line.duration > 0 && width > 0
        veil: Qt.rgba(Theme.base.r, Theme.base.g, Theme.base.b, 0.72)
        color: Theme.lineStrong
    }
}
