import QtQuick
import Zento

// The screenshot editor: tools to the left, the shot in the middle, its looks below.
FocusScope {
    id: content

    required property QtObject editor
    property string failure // of an output, until it is closed or one succeeds
    property string unaskedPath // where a file is saved that nobody could be asked about

    signal closeRequested()

    function copy() {
        canvas.finishWriting()
        editor.copy()
    }
    function save() {
        canvas.finishWriting()
        if (editor.saveTo.length > 0)
            editor.save(editor.saveTo)
        else
            chooser.save(qsTr("Save the screenshot"), editor.proposedPath())
    }

    component Message: Banner {
        property string closedText

        width: parent.width
        visible: text.length > 0 && text !== closedText
        kind: Banner.Warning
        onClosed: closedText = text
        onTextChanged: closedText = ""
    }

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Screenshot")
    Keys.onPressed: event => {
        const command = event.modifiers & Qt.ControlModifier
        const shift = event.modifiers & Qt.ShiftModifier
        event.accepted = true
        if (event.key === Qt.Key_Escape) {
            if (content.editor.escape())
                content.closeRequested()
        } else if (command && event.key === Qt.Key_Z) {
            shift ? content.editor.redo() : content.editor.undo()
        } else if (command && event.key === Qt.Key_C) {
            content.copy()
        } else if (command && event.key === Qt.Key_S) {
            content.save()
        } else if (command && event.key === Qt.Key_W) {
            content.closeRequested()
        } else if (event.key === Qt.Key_Delete || event.key === Qt.Key_Backspace) {
            content.editor.deleteSelection()
        } else {
            event.accepted = !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier)) && content.editor.pressKey(event.text)
        }
    }

    ScreenshotHeader {
        id: header

        width: parent.width
        height: Theme.sizeHeader
        editor: content.editor
        onCopyRequested: content.copy()
        onSaveRequested: content.save()
    }
    ToolColumn {
        id: tools

        y: header.height
        width: 56
        height: parent.height - header.height - bar.height
        editor: content.editor
    }
    Item {
        id: stage

        x: 56
        y: header.height
        width: parent.width - x
        height: parent.height - header.height - bar.height
        clip: true
        Rectangle {
            width: parent.width + 12
            height: parent.height
            radius: Theme.radiusPanel
            color: Theme.base
            border.width: 1
            border.color: Theme.line
        }
        ShotCanvas {
            id: canvas

            anchors.fill: parent
            anchors.margins: 24
            anchors.topMargin: 72
            editor: content.editor
        }
        StyleBar {
            anchors.horizontalCenter: parent.horizontalCenter
            y: 10
            editor: content.editor
        }
        Column {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.margins: 12
            spacing: 8
            Toast {
                id: toast

                anchors.horizontalCenter: parent.horizontalCenter
                visible: passing.running
            }
            Message {
                kind: Banner.Failure
                text: content.failure
            }
            Message { text: content.editor.doubt }
            Message { text: content.editor.notice }
        }
    }
    PresetBar {
        id: bar

        y: parent.height - height
        width: parent.width
        height: 116
        editor: content.editor
    }
    Timer {
        id: passing

        interval: 3200
    }
    FileChooser {
        id: chooser

        onChosen: path => content.editor.save(path)
        onFailed: { // a desktop without a dialog still gets its file
            content.unaskedPath = content.editor.proposedPath()
            content.editor.save(content.unaskedPath)
        }
    }
    Connections {
        target: content.editor
        function onNoted() {
            content.failure = ""
            toast.text = content.unaskedPath ? qsTr("Saved as %1").arg(content.unaskedPath) : content.editor.savedNote
            content.unaskedPath = ""
            passing.restart()
        }
        function onFailed(sentence) {
            content.unaskedPath = ""
            content.failure = "" // the same sentence is told again
            content.failure = sentence
        }
    }
}
