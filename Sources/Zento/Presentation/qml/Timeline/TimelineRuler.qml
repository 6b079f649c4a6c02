import QtQuick
import Zento

// Ticks and times; a press or a drag puts the playhead there.
Item {
    id: ruler

    property var line
    readonly property real tickWidth: { line.width; return line.positionOf(line.tickStep) }
    readonly property int labelEvery: Math.max(1, Math.ceil(56 / Math.max(tickWidth, 1))) // in a film of hours
    readonly property int ticks: line.duration > 0 ? Math.floor(line.duration / line.tickStep) + 1 : 0

    Accessible.role: Accessible.Slider
    Accessible.name: qsTr("Playhead")
    Repeater {
        model: ruler.ticks
        delegate: Item {
            id: tick

            required property int index
            readonly property real time: index * ruler.line.tickStep

            x: { ruler.line.width; return ruler.line.positionOf(time) }
            height: ruler.height
            Rectangle {
                y: parent.height - 5
                width: 1
                height: 5
                color: Theme.lineStrong
            }
            Caption {
                visible: tick.index % ruler.labelEvery === 0 && tick.x + implicitWidth <= ruler.width
                y: 2
                text: Math.floor(tick.time / 60) + ":" + String(tick.time % 60).padStart(2, "0")
                family: Theme.monoFamily
            }
        }
    }
    MouseArea {
        anchors.fill: parent
        anchors.leftMargin: -Theme.timelinePlayheadHit / 2
        anchors.rightMargin: -Theme.timelinePlayheadHit / 2
        preventStealing: true
        onPressed: mouse => ruler.line.seekTo(mouse.x - Theme.timelinePlayheadHit / 2)
        onPositionChanged: mouse => ruler.line.seekTo(mouse.x - Theme.timelinePlayheadHit / 2)
    }
}
