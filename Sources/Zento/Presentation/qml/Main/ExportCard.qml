import QtQuick
import Zento

// The export under way: how far it is, and the way to give it up.
Item {
    id: card

    readonly property var job: App.filmExport
    readonly property real fraction: App.recording.progress
    readonly property bool isGif: App.recording.phase === Phase.ExportingGif

    // "1 486": thousands apart, as times and sizes are written elsewhere.
    function count(number) {
        return String(number).replace(/\B(?=(\d{3})+$)/g, "\u2009")
    }
    function remaining(seconds) {
        return seconds >= 90 ? qsTr("about %1 min left").arg(Math.round(seconds / 60))
            : seconds >= 0 ? qsTr("about %1 s left").arg(seconds) : ""
    }

    width: 360
    height: 130
    Accessible.role: Accessible.Pane
    Accessible.name: heading.text
    Panel {
        anchors.fill: parent
        radius: Theme.radiusPanel
    }
    RecordingPicture {
        x: 16
        y: 14
        width: 72
        height: 40
        path: card.job.session
        version: "raw"
    }
    Column {
        x: 100
        y: 14
        width: 200
        Label {
            id: heading

            width: parent.width
            text: card.isGif ? qsTr("Writing the GIF") : qsTr("Exporting video")
            type: Theme.strongType
        }
        Caption {
            width: parent.width
            text: card.job.isCancelling ? qsTr("Being cancelled")
                : [card.job.totalFrames > 0 ? qsTr("Frame %1 of %2").arg(card.count(card.job.frame)).arg(card.count(card.job.totalFrames)) : card.job.name,
                    card.remaining(card.job.secondsLeft)].filter(part => part.length > 0).join(" · ")
        }
    }
    Label {
        anchors.right: parent.right
        anchors.rightMargin: 16
        y: 22
        text: qsTr("%1 %").arg(Math.floor(card.fraction * 100 + 0.001))
        type: Theme.strongType
        Accessible.ignored: true
    }
    ProgressLine {
        x: 16
        y: 66
        width: parent.width - 32
        label: heading.text
        value: card.fraction
    }
    Caption {
        x: 16
        anchors.verticalCenter: cancel.verticalCenter
        width: parent.width - cancel.width - 48
        text: qsTr("You can go on editing.")
    }
    Button {
        id: cancel

        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 16
        size: Button.Small
        overlay: true
        enabled: !card.job.isCancelling
        text: qsTr("Cancel export")
        onClicked: card.job.cancel()
    }
}
