import QtQuick
import QtQml
import Zento

// The edit timeline: ruler, video, zooms, sound and words over one strip, with the playhead through
// all of them. What a gesture means is the model's affair.
FocusScope {
    id: timeline

    readonly property var line: App.editor.timeline
    readonly property real videoY: Theme.timelineRuler
    readonly property real zoomsY: videoY + Theme.timelineVideo + Theme.timelineGap
    readonly property real soundY: zoomsY + Theme.timelineZooms + Theme.timelineGap
    readonly property real wordsY: soundY + Theme.timelineSound + Theme.timelineGap

    function clock(seconds) {
        const tenths = Math.round(seconds * 10)
        return Math.floor(tenths / 600) + ":" + (tenths % 600 / 10).toFixed(1).padStart(4, "0")
    }

    Binding {
        target: timeline.line
        property: "width"
        value: strip.width
    }
    Repeater {
        model: [
            { icon: "film", name: qsTr("Video"), y: timeline.videoY, height: Theme.timelineVideo },
            { icon: "zoom", name: qsTr("Zooms"), y: timeline.zoomsY, height: Theme.timelineZooms },
            { icon: "tab-sound", name: qsTr("Sound"), y: timeline.soundY, height: Theme.timelineSound },
            { icon: "words", name: qsTr("Words"), y: timeline.wordsY, height: Theme.timelineWords }
        ]
        delegate: Item {
            id: lane

            required property var modelData

            y: modelData.y
            width: Theme.timelineGutter
            height: modelData.height
            Icon {
                anchors.verticalCenter: parent.verticalCenter
                name: lane.modelData.icon
                size: Theme.sizeIconSmall
                color: Theme.textTertiary
            }
            Caption {
                x: 24
                anchors.verticalCenter: parent.verticalCenter
                text: lane.modelData.name
                weight: 500
            }
        }
    }
    Item {
        id: strip

        x: Theme.timelineGutter
        width: timeline.width - x
        height: timeline.height
        TimelineRuler {
            width: parent.width
            height: Theme.timelineRuler
            line: timeline.line
        }
        TimelineVideo {
            y: timeline.videoY
            width: parent.width
            height: Theme.timelineVideo
            line: timeline.line
            clock: timeline.clock
        }
        TimelineZooms {
            y: timeline.zoomsY
            width: parent.width
            height: Theme.timelineZooms
            line: timeline.line
            clock: timeline.clock
        }
        Rectangle {
            y: timeline.soundY
            width: parent.width
            height: Theme.timelineSound
            radius: Theme.radiusControl
            color: Theme.well
            opacity: 0.6
        }
        WaveformStrip {
            y: timeline.soundY
            width: parent.width
            height: Theme.timelineSound
            media: App.editor.media
            color: Theme.laneSound
            Accessible.role: Accessible.Graphic
            Accessible.name: timeline.line.beats.length > 0
                ? qsTr("Sound, with the beats of the music") : qsTr("Sound")
        }
        Repeater { // the music's beats
            model: timeline.line.beats
            delegate: Rectangle {
                required property real modelData

                x: Math.round(modelData)
                y: timeline.soundY
                width: 1
                height: 6
                color: Theme.laneSound
            }
        }
        TimelineWordLane {
            y: timeline.wordsY
            width: parent.width
            height: Theme.timelineWords
            line: timeline.line
            clock: timeline.clock
        }
        Rectangle {
            id: playhead

            visible: timeline.line.duration > 0
            x: Math.round(timeline.line.playheadX - width / 2)
            y: Theme.timelineRuler - 4
            width: Theme.timelinePlayheadLine
            height: parent.height - y
            color: Theme.primary
        }
        TimeBubble {
            visible: playhead.visible
            centerX: timeline.line.playheadX
            limit: strip.width
            text: timeline.clock(timeline.line.timeAt(timeline.line.playheadX))
        }
    }
}
