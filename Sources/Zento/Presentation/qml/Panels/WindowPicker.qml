import QtQuick
import QtQuick.Templates as T
import Zento

// The windows that can be recorded, as pictures.
FocusScope {
    id: picker

    property string search
    readonly property var windows: App.windows

    property string purpose: qsTr("Choose a window to record")

    signal picked(var windowId)
    signal cancelled()

    implicitWidth: 920
    implicitHeight: 562
    focus: true
    Accessible.role: Accessible.Dialog
    Accessible.name: heading.text
    Keys.onEscapePressed: cancelled()
    Component.onCompleted: windows.refresh()

    Panel {
        anchors.fill: parent
        elevation: Theme.sheetElevation
        radius: Theme.radiusSheet
    }
    Label {
        id: heading

        x: 24
        y: 22
        text: picker.purpose
        type: Theme.sheetType
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    SearchBox {
        anchors.right: parent.right
        anchors.rightMargin: 24
        y: 20
        width: 220
        label: qsTr("Search windows")
        placeholderText: label
        onEdited: text => picker.search = text.trim().toLowerCase()
        onLeaving: picker.cancelled()
        Keys.onDownPressed: grid.forceActiveFocus(Qt.TabFocusReason)
    }
    Flickable {
        id: view

        x: 14
        y: 64
        width: parent.width - 28
        height: parent.height - 64 - 68
        contentHeight: grid.implicitHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        Flow {
            id: grid

            width: view.width
            spacing: 4
            Repeater {
                id: cells

                model: picker.windows
                delegate: WindowCell {
                    width: (view.width - 8.5) / 3
                    visible: picker.search.length === 0 || title.toLowerCase().includes(picker.search)
                        || application.toLowerCase().includes(picker.search)
                    focus: index === 0
                    onClicked: picker.picked(windowId)
                    Keys.onLeftPressed: cells.itemAt(index - 1)?.forceActiveFocus(Qt.TabFocusReason)
                    Keys.onRightPressed: cells.itemAt(index + 1)?.forceActiveFocus(Qt.TabFocusReason)
                    Keys.onUpPressed: cells.itemAt(index - 3)?.forceActiveFocus(Qt.TabFocusReason)
                    Keys.onDownPressed: cells.itemAt(index + 3)?.forceActiveFocus(Qt.TabFocusReason)
                }
            }
        }
    }
    Label {
        anchors.centerIn: parent
        visible: picker.windows.count === 0 && !picker.windows.isLoading
        text: qsTr("No window is open that can be recorded.")
        color: Theme.textSecondary
    }
    Divider {
        y: parent.height - 61
        width: parent.width
    }
    Caption {
        x: 24
        y: parent.height - 38
        text: {
            const parts = []
            if (App.settings.recordNarration)
                parts.push(qsTr("The microphone is on."))
            if (App.settings.recordWebcam)
                parts.push(qsTr("The camera is on."))
            if (App.settings.recordSystemAudio)
                parts.push(qsTr("Computer sound is on."))
            return [qsTr("Click a window to start.")].concat(parts).join(" ")
        }
    }
    Button {
        anchors.right: parent.right
        anchors.rightMargin: 24
        y: parent.height - 48
        overlay: true
        text: qsTr("Cancel")
        onClicked: picker.cancelled()
    }
}
