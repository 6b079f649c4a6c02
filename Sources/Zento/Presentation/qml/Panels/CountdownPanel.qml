import QtQuick
import Zento

// "Recording in 3".
FocusScope {
    id: panel

    property int remaining: 3
    property int seconds: 3 // the whole countdown

    signal cancelled()

    implicitWidth: 220
    implicitHeight: 250
    focus: true
    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("Recording in %1").arg(remaining)
    Keys.onEscapePressed: cancelled()
    Panel {
        anchors.fill: parent
        elevation: Theme.floatingElevation
        radius: 24
    }
    Label {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 20
        text: qsTr("Recording in")
        weight: 500
        color: Theme.textSecondary
        Accessible.ignored: true
    }
    Ring {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 46
        width: 139
        height: 139
        thickness: 3
        color: Theme.record
        fraction: panel.seconds > 0 ? panel.remaining / panel.seconds : 0
        Behavior on fraction {
            enabled: !Theme.reducedMotion
            NumberAnimation { duration: Theme.durationSlow }
        }
        Label {
            anchors.centerIn: parent
            text: panel.remaining
            type: Theme.countType
            family: "Inter Display"
            Accessible.ignored: true
        }
    }
    Button {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 196
        focus: true
        size: Button.Small
        overlay: true
        text: qsTr("Cancel")
        onClicked: panel.cancelled()
    }
}
