import QtQuick

// The editor of a recording of 40 seconds, held still: what is asked of it is counted in `calls`.
QtObject {
    id: editor

    property var calls: []

    function note(call) { calls = calls.concat([call]) }

    property var media: null
    property QtObject session: QtObject {
        property bool isRenderStale: false
        property bool isStaleDismissed: false
        property bool canTranscribe: true
        property bool isTranscribing: false

        function retranscribe() { editor.note("retranscribe") }
    }
    property QtObject preview: QtObject {
        property int state: 2
        property real proxyProgress: 0
        property string failure
        property real tOut: playheadTimeline
        property real duration: 40
        property real playheadTimeline: 0
        property bool isPlaying: false
        property string scrubHint
        property bool hasImage: false

        function seek(time) { editor.note("seek " + time); playheadTimeline = time }
        function step(frames) { editor.note("step " + frames) }
        function skip(seconds) { editor.note("skip " + seconds) }
        function togglePlaying() { editor.note("togglePlaying") }
        function seekToStart() { editor.note("seekToStart") }
        function seekToEnd() { editor.note("seekToEnd") }
    }
    property QtObject timeline: QtObject {
        property real width: 0
        property real duration: 40
        property real tickStep: 5
        property var cuts: duration > 0 ? [{ x: positionOf(18), isOnBeat: true }] : []
        property var beats: []
        property var zooms: duration > 0
            ? [zoom(4, 1.6, true), zoom(12, 1.9, false), zoom(26, 2.1, true)] : []
        property var words: duration > 0
            ? [word(0, 2, "Let us begin"), word(2, 9, "Then this"), word(3, 30, "Thanks")] : []
        property real playheadX: positionOf(editor.preview.playheadTimeline)
        property real trimStartTime: 0
        property real trimEndTime: duration
        property real trimStartX: positionOf(trimStartTime)
        property real trimEndX: positionOf(trimEndTime)
        property bool isTrimmed: false
        property int deletedZooms: 0
        property string trimDrag
        property real draggedZoom: -1
        property bool isStretching: false
        property real zoomDragDelta: 0
        property real zoomDragTime: 0

        // Nothing is open: as the model is then, whose ends lie on each other.
        function empty() { duration = 0 }
        function positionOf(time) { return duration > 0 ? width * time / duration : 0 }
        function timeAt(x) { return width > 0 ? x / width * duration : 0 }
        function zoom(time, level, enabled) {
            return { id: time, x: positionOf(time), width: positionOf(5), zoom: level, title: "",
                enabled: enabled, added: false, edited: false, tint: (level - 1) / 1.1, time: time, timeEnd: time + 5 }
        }
        function word(index, time, text) {
            return { index: index, x: positionOf(time), width: positionOf(4), text: text, time: time, timeEnd: time + 4 }
        }
        function zoomAt(x) { return zooms.find(zoom => zoom.x <= x && x < zoom.x + zoom.width)?.id ?? -1 }
        function stretchesAt(x) { return false }
        function seekTo(x) { editor.preview.seek(timeAt(x)) }
        function setWord(index, text) {
            editor.note("setWord " + index + " " + text)
            words = words.map(word => word.index === index ? Object.assign({}, word, { text: text }) : word)
                .filter(word => word.text.length > 0)
        }
        function nudgeZoom(id, seconds) { editor.note("nudgeZoom " + id + " " + seconds) }
        function stretchZoom(id, seconds) { editor.note("stretchZoom " + id + " " + seconds) }
        function toggleZoom(id) { editor.note("toggleZoom " + id) }
        function setZoomLevel(id, level) { editor.note("setZoomLevel " + id + " " + level) }
        function resetZoom(id) { editor.note("resetZoom " + id) }
        function deleteZoom(id) { editor.note("deleteZoom " + id) }
        function addZoomAtPlayhead() { editor.note("addZoomAtPlayhead") }
        function restoreDeletedZooms() { editor.note("restoreDeletedZooms") }
        function nudgeTrim(part, seconds) { editor.note("nudgeTrim " + part + " " + seconds) }
        function resetTrim() { editor.note("resetTrim") }
        function cancelDrag() { editor.note("cancelDrag") }
    }
}
