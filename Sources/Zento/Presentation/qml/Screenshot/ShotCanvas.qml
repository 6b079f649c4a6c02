import QtQuick
import Zento

// The shot as it will be saved, and what is drawn on it with the pointer.
Item {
    id: canvas

    required property QtObject editor
    readonly property bool isWriting: editor.writing.size !== undefined

    function finishWriting() {
        if (isWriting)
            editor.commitText()
    }
    function fit() {
        editor.setView(Qt.size(width, height), Screen.devicePixelRatio)
    }

    onWidthChanged: fit()
    onHeightChanged: fit()
    Component.onCompleted: fit()
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("The screenshot")

    ShotView {
        id: view

        readonly property rect frame: canvas.editor.pictureFrame

        x: frame.x
        y: frame.y
        width: frame.width
        height: frame.height
        picture: canvas.editor.picture
    }
    Rectangle {
        readonly property rect frame: canvas.editor.selectionFrame

        visible: frame.width > 0
        x: frame.x - 3
        y: frame.y - 3
        width: frame.width + 6
        height: frame.height + 6
        radius: 4
        color: "transparent"
        border.width: 1.5
        border.color: Theme.accent
    }
    Repeater {
        model: canvas.editor.handles
        delegate: Rectangle {
            required property point modelData

            x: modelData.x - width / 2
            y: modelData.y - height / 2
            width: 11
            height: 11
            radius: 5.5
            color: "white"
            border.width: 1.5
            border.color: Theme.accentFill
        }
    }
    Item {
        id: crop

        readonly property rect frame: canvas.editor.cropFrame

        anchors.fill: parent
        visible: frame.width > 0 || frame.height > 0
        component Shade: Rectangle { color: Qt.rgba(0, 0, 0, 0.5) }
        Shade { x: view.x; y: view.y; width: view.width; height: Math.max(0, crop.frame.y - y) }
        Shade { x: view.x; y: crop.frame.y; width: Math.max(0, crop.frame.x - x); height: crop.frame.height }
        Shade { x: crop.frame.x + crop.frame.width; y: crop.frame.y; width: Math.max(0, view.x + view.width - x); height: crop.frame.height }
        Shade { x: view.x; y: crop.frame.y + crop.frame.height; width: view.width; height: Math.max(0, view.y + view.height - y) }
        Rectangle {
            x: crop.frame.x
            y: crop.frame.y
            width: crop.frame.width
            height: crop.frame.height
            color: "transparent"
            border.width: 1
            border.color: "white"
        }
    }
    MouseArea {
        anchors.fill: parent
        anchors.margins: -20
        cursorShape: canvas.editor.tool === "select" ? Qt.ArrowCursor : canvas.editor.tool === "text" ? Qt.IBeamCursor : Qt.CrossCursor
        onPressed: mouse => {
            canvas.forceActiveFocus(Qt.MouseFocusReason)
            canvas.editor.press(Qt.point(mouse.x - 20, mouse.y - 20))
        }
        onPositionChanged: mouse => canvas.editor.drag(Qt.point(mouse.x - 20, mouse.y - 20))
        onReleased: mouse => canvas.editor.release(Qt.point(mouse.x - 20, mouse.y - 20))
        onCanceled: canvas.editor.escape()
    }
    Loader {
        active: canvas.isWriting
        onLoaded: item.forceActiveFocus(Qt.OtherFocusReason)
        sourceComponent: TextInput {
            x: canvas.editor.writing.x ?? 0
            y: (canvas.editor.writing.baseline ?? 0) - baselineOffset
            width: Math.max(contentWidth + 8, 24)
            color: canvas.editor.writing.color ?? "red"
            selectionColor: Theme.accentFill
            font.family: Theme.uiFamily
            font.weight: Font.Bold
            font.styleName: "Bold"
            font.pixelSize: Math.max(1, canvas.editor.writing.size ?? 16)
            Accessible.role: Accessible.EditableText
            Accessible.name: qsTr("Text of the mark")
            onTextChanged: canvas.editor.setTextInput(text)
            onAccepted: {
                canvas.finishWriting()
                canvas.forceActiveFocus(Qt.OtherFocusReason)
            }
            onActiveFocusChanged: if (!activeFocus) canvas.finishWriting()
        }
    }
}
