import QtQuick
import Zento

// The film under the playhead, and what there is to say about it.
Item {
    id: film

    readonly property var preview: App.editor.preview
    readonly property bool isPreparing: preview.state === 1
    readonly property bool hasFailed: preview.state === 3
    readonly property bool isEmpty: preview.state === 2 && App.library.selectedItem.duration === 0

    FilmView {
        anchors.fill: parent
        preview: film.preview
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Film")
    }
    Rectangle {
        anchors.fill: parent
        visible: !film.preview.hasImage || film.hasFailed // of an older time, and hard to read on
        radius: 4
        color: Theme.well
    }
    WheelHandler {
        property real accumulated: 0
        readonly property real pointsPerFrame: 6

        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        orientation: Qt.Horizontal
        onWheel: event => {
            const precise = event.pixelDelta.x !== 0
            if (!precise) {
                if (event.angleDelta.x !== 0)
                    film.preview.step(event.angleDelta.x > 0 ? 1 : -1)
                return
            }
            accumulated += event.pixelDelta.x / pointsPerFrame
            const frames = Math.trunc(accumulated)
            accumulated -= frames
            if (frames !== 0)
                film.preview.step(frames)
        }
    }
    Pill {
        anchors.top: parent.top
        visible: film.isPreparing
        text: film.preview.proxyProgress > 0
            ? qsTr("Preparing preview… %1 %").arg(Math.floor(film.preview.proxyProgress * 100))
            : qsTr("Preparing preview…")
    }
    Pill {
        anchors.bottom: parent.bottom
        visible: film.preview.scrubHint.length > 0
        text: film.preview.scrubHint
    }
    Label {
        anchors.centerIn: parent
        width: Math.min(parent.width - 48, 420)
        visible: film.hasFailed || film.isEmpty
        text: film.hasFailed ? film.preview.failure
            : qsTr("Nothing on the screen changed while this was recorded, so there is no film.")
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }

    component Pill: Rectangle {
        property alias text: words.text

        anchors.horizontalCenter: parent.horizontalCenter
        anchors.margins: 12
        width: Math.ceil(words.implicitWidth) + 24
        height: 28
        radius: 14
        color: Theme.overlay
        border.color: Theme.line
        Label {
            id: words

            anchors.centerIn: parent
            type: Theme.labelType
        }
    }
}
