import QtQuick
import Zento

// The bar by which anything is captured: recordings, screenshots, and what is recorded with them.
FocusScope {
    id: panel

    readonly property var settings: App.settings
    property bool canRecord: App.permissions.canRecord

    signal closed()
    signal permissionsRequested()

    function leave(action) {
        closed()
        action()
    }

    implicitWidth: 640
    implicitHeight: 110
    focus: true
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Capture panel")
    Keys.onEscapePressed: closed()
    Keys.onRightPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    Keys.onLeftPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    component Heading: Caption {
        y: 10
        weight: 600
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Panel {
        anchors.fill: parent
        elevation: Theme.floatingElevation
        radius: 16
    }
    Heading {
        x: 20
        text: qsTr("Record")
    }
    Row {
        x: 12
        y: 32
        spacing: 4
        CaptureButton {
            focus: true
            enabled: panel.canRecord
            iconName: "screen"
            iconColor: Theme.record
            text: qsTr("Screen")
            Accessible.name: qsTr("Record screen")
            onClicked: panel.leave(() => App.recording.recordDisplay())
        }
        CaptureButton {
            enabled: panel.canRecord
            visible: App.permissions.window
            iconName: "window"
            iconColor: Theme.record
            text: qsTr("Window")
            Accessible.name: qsTr("Record a window")
            onClicked: panel.leave(() => App.model.pickWindow())
        }
        CaptureButton {
            enabled: panel.canRecord
            iconName: "area"
            iconColor: Theme.record
            text: qsTr("Area")
            Accessible.name: qsTr("Record an area")
            onClicked: panel.leave(() => App.model.pickArea())
        }
    }
    Divider {
        x: 209
        y: 16
        height: 74
        width: 1
    }
    Heading {
        x: 227
        text: qsTr("Screenshot")
    }
    Row {
        x: 219
        y: 32
        CaptureButton {
            iconName: "screen"
            text: qsTr("Screen")
            Accessible.name: qsTr("Screenshot screen")
            onClicked: panel.leave(() => App.model.run("screenshotScreen"))
        }
        CaptureButton {
            visible: App.permissions.window
            iconName: "window"
            text: qsTr("Window")
            Accessible.name: qsTr("Screenshot a window")
            onClicked: panel.leave(() => App.model.run("screenshotWindow"))
        }
        CaptureButton {
            iconName: "area"
            text: qsTr("Area")
            Accessible.name: qsTr("Screenshot an area")
            onClicked: panel.leave(() => App.model.run("screenshotArea"))
        }
        CaptureButton {
            visible: App.permissions.scrolling
            iconName: "scrolling"
            text: qsTr("Scrolling")
            Accessible.name: qsTr("Scrolling capture")
            onClicked: panel.leave(() => App.model.run("scrollingCapture"))
        }
    }
    Divider {
        x: 464
        y: 16
        height: 74
        width: 1
    }
    Heading {
        x: 478
        text: qsTr("With")
    }
    Row {
        x: 470
        y: 32
        visible: panel.canRecord
        CaptureButton {
            width: 53
            checkable: true
            checked: panel.settings.recordNarration
            iconName: checked ? "mic" : "mic-off"
            text: qsTr("Mic")
            tip: qsTr("Record the microphone with your next recording")
            onToggled: panel.settings.recordNarration = checked
        }
        CaptureButton {
            width: 53
            checkable: true
            checked: panel.settings.recordWebcam
            iconName: checked ? "webcam" : "webcam-off"
            text: qsTr("Camera")
            tip: qsTr("Record the camera with your next recording")
            onToggled: panel.settings.recordWebcam = checked
        }
        CaptureButton {
            width: 53
            checkable: true
            checked: panel.settings.recordSystemAudio
            iconName: checked ? "speaker" : "speaker-off"
            text: qsTr("Audio")
            tip: qsTr("Record the computer's sound with your next recording")
            onToggled: panel.settings.recordSystemAudio = checked
        }
    }
    GrantButton {
        x: 470
        y: 32
        visible: !panel.canRecord
        onClicked: panel.leave(() => panel.permissionsRequested())
    }
}
