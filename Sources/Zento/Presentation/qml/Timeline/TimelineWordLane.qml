import QtQuick
import QtQuick.Templates as T
import Zento

// The captions; a click opens the editor above the chip.
FocusScope {
    id: lane

    property var line
    property var clock
    property int current: 0 // of the words

    function edit(word) {
        editor.word = word
        draft.text = word.text
        editor.open()
        draft.forceActiveFocus()
        draft.selectAll()
    }

    function chipWidth(word) { return Math.max(4, (word?.width ?? 0) - 2) }
    // Its row; of two that overlap the later one. -1 for none.
    function wordAt(x) {
        let at = line.words.length - 1
        while (at >= 0 && (x < line.words[at].x || x >= line.words[at].x + chipWidth(line.words[at])))
            --at
        return at
    }

    activeFocusOnTab: line.words.length > 0
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Words")
    Keys.onLeftPressed: current = Math.max(0, current - 1)
    Keys.onRightPressed: current = Math.min(line.words.length - 1, current + 1)
    Keys.onReturnPressed: if (line.words[current]) edit(line.words[current])
    Keys.onEnterPressed: if (line.words[current]) edit(line.words[current])

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusControl
        color: Theme.well
        opacity: 0.6
    }
    Repeater {
        model: lane.line.words
        delegate: Rectangle {
            id: chip

            required property var modelData

            x: modelData.x
            y: 2
            width: lane.chipWidth(modelData)
            height: 24
            radius: Theme.radiusChip
            clip: true
            color: Qt.rgba(Theme.laneWords.r, Theme.laneWords.g, Theme.laneWords.b, 0.18)
            Accessible.role: Accessible.ListItem
            Accessible.name: qsTr("%1, %2").arg(modelData.text).arg(lane.clock(modelData.time))
            Accessible.onPressAction: lane.edit(modelData)
            Rectangle {
                width: 3
                height: parent.height
                color: Theme.laneWords
            }
            Loader {
                active: chip.width >= 28
                sourceComponent: Label {
                    x: 10
                    y: (chip.height - height) / 2
                    width: chip.width - 14
                    text: chip.modelData.text
                    type: Theme.labelType
                    Accessible.ignored: true
                }
            }
        }
    }
    Item {
        readonly property var word: lane.activeFocus ? lane.line.words[lane.current] : undefined

        x: word?.x ?? 0
        y: 2
        width: lane.chipWidth(word)
        height: 24
        visible: word !== undefined
        FocusRing { targetRadius: Theme.radiusChip }
    }
    MouseArea {
        id: pointer

        readonly property int over: containsMouse ? lane.wordAt(mouseX) : -1

        anchors.fill: parent
        hoverEnabled: true
        onClicked: mouse => {
            const at = lane.wordAt(mouse.x)
            if (at >= 0) {
                lane.current = at
                lane.edit(lane.line.words[at])
            }
        }
    }
    Item {
        readonly property var word: lane.line.words[pointer.over]

        x: word?.x ?? 0
        y: 2
        width: lane.chipWidth(word)
        height: 24
        visible: word !== undefined
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusChip
            color: Qt.rgba(Theme.laneWords.r, Theme.laneWords.g, Theme.laneWords.b, 0.14)
        }
        Tip {
            text: (parent.word?.text ?? "") + qsTr("\n\nClick to edit this caption")
            shown: parent.word !== undefined
        }
    }
    T.Popup {
        id: editor

        property var word

        function save(text) {
            lane.line.setWord(word.index, text)
            close()
        }

        x: Math.max(0, Math.min(lane.width - width, (word?.x ?? 0) + (word?.width ?? 0) / 2 - width / 2))
        y: -height - 8
        width: 400
        height: 148
        padding: 16
        modal: true
        focus: true
        background: Panel {}
        contentItem: Item {
            Label {
                text: qsTr("Caption")
                type: Theme.strongType
            }
            Label {
                anchors.right: parent.right
                text: editor.word ? lane.clock(editor.word.time) + " – " + lane.clock(editor.word.timeEnd) : ""
                type: Theme.timeType
                color: Theme.textTertiary
            }
            TextBox {
                id: draft

                y: 32
                width: parent.width
                label: qsTr("Caption")
                onAccepted: editor.save(text)
            }
            Button {
                anchors.bottom: parent.bottom
                kind: Button.Quiet
                text: qsTr("Remove caption")
                onClicked: editor.save("")
            }
            Button {
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                kind: Button.Primary
                text: qsTr("Save")
                onClicked: editor.save(draft.text)
            }
        }
    }
}
