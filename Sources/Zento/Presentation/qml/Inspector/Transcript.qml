import QtQuick
import Zento

// What is said, line by line: a click goes there, a double click edits.
FocusScope {
    id: transcript

    property var line    // the timeline
    property var preview
    readonly property var words: line?.words ?? []
    property int edited: -1 // row
    readonly property int spoken: {
        const now = preview?.playheadTimeline ?? -1
        let after = words.length // the first that begins later
        for (let low = 0; low < after;) {
            const middle = (low + after) >> 1
            if (words[middle].time <= now)
                low = middle + 1
            else
                after = middle
        }
        return after > 0 && now < words[after - 1].timeEnd ? after - 1 : -1
    }

    function clock(seconds) {
        const tenths = Math.round(seconds * 10)
        return Math.floor(tenths / 600) + ":" + (tenths % 600 / 10).toFixed(1).padStart(4, "0")
    }
    function edit(row) {
        list.currentIndex = row
        edited = row
    }
    function save(row, text) {
        const word = words[row]
        edited = -1
        if (word && text.trim() !== word.text)
            line.setWord(word.index, text)
    }

    function finish(row, text) {
        save(row, text)
        list.forceActiveFocus()
    }

    height: Math.min(240, list.contentHeight)
    visible: words.length > 0
    onSpokenChanged: if (spoken >= 0 && edited < 0) list.positionViewAtIndex(spoken, ListView.Contain)
    ListView {
        id: list

        anchors.fill: parent
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        focus: true
        activeFocusOnTab: true
        model: transcript.words.length
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Transcript")
        Keys.onPressed: event => {
            event.accepted = true
            if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                transcript.preview.seek(transcript.words[currentIndex]?.time ?? 0)
            else if (event.key === Qt.Key_F2)
                transcript.edit(currentIndex)
            else
                event.accepted = false
        }
        delegate: Item {
            id: row

            required property int index
            readonly property var word: transcript.words[index] ?? null
            readonly property bool isEdited: transcript.edited === index

            width: ListView.view.width
            height: isEdited ? draft.height + 4 : Math.max(28, words.height + 8)
            Accessible.role: Accessible.ListItem
            Accessible.name: word ? qsTr("%1, %2").arg(word.text).arg(transcript.clock(word.time)) : ""
            Accessible.onPressAction: transcript.edit(index)
            Rectangle {
                anchors.fill: parent
                visible: !row.isEdited
                radius: Theme.radiusChip
                color: transcript.spoken === row.index ? Theme.accentSoft
                    : area.containsMouse ? Theme.control : "transparent"
            }
            Caption {
                x: 6
                y: 6
                visible: !row.isEdited
                text: transcript.clock(row.word?.time ?? 0)
                family: Theme.monoFamily
                Accessible.ignored: true
            }
            Label {
                id: words

                x: 60
                y: 4
                width: parent.width - x - 6
                visible: !row.isEdited
                text: row.word?.text ?? ""
                type: Theme.labelType
                weight: 400
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            FocusRing {
                visible: list.activeFocus && list.currentIndex === row.index && !row.isEdited
                targetRadius: Theme.radiusChip
            }
            MouseArea {
                id: area

                anchors.fill: parent
                enabled: !row.isEdited
                hoverEnabled: true
                onClicked: {
                    list.currentIndex = row.index
                    list.forceActiveFocus(Qt.MouseFocusReason)
                    transcript.preview.seek(row.word.time)
                }
                onDoubleClicked: transcript.edit(row.index)
            }
            TextBox {
                id: draft

                width: parent.width
                visible: row.isEdited
                label: qsTr("Caption")
                value: row.word?.text ?? ""
                onVisibleChanged: {
                    if (visible) {
                        text = value
                        forceActiveFocus()
                        selectAll()
                    }
                }
                // The keys stop here: in the list, Enter goes to the line's time.
                Keys.onReturnPressed: transcript.finish(row.index, text)
                Keys.onEnterPressed: transcript.finish(row.index, text)
                Keys.onEscapePressed: transcript.finish(row.index, value)
                // A field that is clicked keeps the keys.
                onActiveFocusChanged: if (!activeFocus && row.isEdited) transcript.save(row.index, text)
            }
        }
    }
}
