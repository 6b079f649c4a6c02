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
    CutMarks {
        readonly property int onBeat: cuts.filter(cut => cut.isOnBeat).length

        x: -overhang
        y: -overhang
        width: parent.width + 2 * overhang
        height: parent.height + overhang
        visible: cuts.length > 0
        cuts: track.line.cuts
        color: Theme.primary
        cornerColor: Theme.textTertiary
        beatColor: Theme.laneSound
        edgeColor: Theme.base
        Accessible.role: Accessible.Graphic
        Accessible.name: (cuts.length === 1 ? qsTr("1 cut") : qsTr("%1 cuts").arg(cuts.length))
            + (onBeat > 0 ? qsTr(", %1 on the beat").arg(onBeat) : "")
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
