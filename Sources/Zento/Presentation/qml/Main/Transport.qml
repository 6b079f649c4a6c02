import QtQuick
import QtQuick.Templates as T
import Zento

// Time, transport buttons and the frame's shape.
Item {
    id: transport

    property real time: 0 // seconds of the film
    property real duration: 0
    property bool playing: false

    signal toggled()
    signal stepped(int frames)
    signal skipped(int seconds)

    function clock(seconds) {
        const tenths = Math.round(seconds * 10)
        return Math.floor(tenths / 600) + ":" + (tenths % 600 / 10).toFixed(1).padStart(4, "0")
    }

    height: 52
    Row {
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        spacing: 8
        opacity: transport.enabled ? 1 : Theme.opacityDisabled
        Label {
            text: transport.clock(transport.time)
            type: Theme.timeType
        }
        Label {
            text: "/ " + transport.clock(transport.duration)
            type: Theme.timeType
            weight: 400
            color: Theme.textTertiary
        }
    }
    Row {
        anchors.centerIn: parent
        spacing: 4
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            iconName: "skip-back"
            text: qsTr("Back five seconds")
            onClicked: transport.skipped(-5)
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            iconName: "step-back"
            text: qsTr("Back a frame")
            onClicked: transport.stepped(-1)
        }
        Item {
            width: 52
            height: 40
            T.Button {
                id: play

                x: 6
                width: 40
                height: 40
                opacity: enabled ? 1 : Theme.opacityDisabled
                focusPolicy: Qt.StrongFocus
                text: transport.playing ? qsTr("Pause") : qsTr("Play")
                Accessible.name: text
                Accessible.onPressAction: if (play.enabled) play.clicked()
                onClicked: transport.toggled()
                background: Rectangle {
                    radius: 20
                    color: play.down ? Theme.primaryPressed : play.hovered ? Theme.primaryHover : Theme.primary
                    FocusRing {
                        visible: play.visualFocus
                        targetRadius: 20
                    }
                }
                contentItem: Item {
                    Icon {
                        anchors.centerIn: parent
                        name: transport.playing ? "pause" : "play"
                        color: Theme.inkOnPrimary
                    }
                }
            }
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            iconName: "step-forward"
            text: qsTr("Forward a frame")
            onClicked: transport.stepped(1)
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            iconName: "skip-forward"
            text: qsTr("Forward five seconds")
            onClicked: transport.skipped(5)
        }
    }
}
