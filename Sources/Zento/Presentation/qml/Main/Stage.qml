import QtQuick
import Zento

// Where the film is seen. `film` is what plays it; without one, the selected recording's picture
// stands on its background.
Rectangle {
    id: stage

    property Component film: App.editor ? liveFilm : null
    readonly property var preview: App.editor ? App.editor.preview : null
    readonly property bool hasFilm: preview !== null && preview.duration > 0

    signal exportRequested()

    readonly property var item: App.library.selectedItem
    readonly property bool hasItem: item.path !== undefined
    readonly property real aspect: App.settings.aspect === "9:16" ? 9 / 16 : App.settings.aspect === "1:1" ? 1 : 16 / 9
    readonly property real margin: Window.height < 800 ? 12 : 24

    radius: Theme.radiusPanel
    color: Theme.base
    border.width: 1
    border.color: Theme.line
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Stage")

    Item {
        id: canvas

        anchors.fill: parent
        anchors.bottomMargin: 53
        Item {
            id: frame

            readonly property real room: Math.min(parent.width - 2 * stage.margin, (parent.height - 2 * stage.margin) * stage.aspect)

            anchors.centerIn: parent
            visible: stage.hasItem
            width: Math.floor(room)
            height: Math.floor(room / stage.aspect)
            Loader {
                anchors.fill: parent
                active: stage.hasItem
                sourceComponent: stage.film ?? still
            }
        }
        Item {
            anchors.centerIn: parent
            visible: !stage.hasItem
            width: 320
            height: 180
            Brackets {
                anchors.fill: parent
                color: Theme.lineStrong
                radius: 12
            }
            Column {
                anchors.centerIn: parent
                spacing: 4
                Icon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    name: "film"
                    size: 28
                    color: Theme.textTertiary
                }
                Gap {}
                Label {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: qsTr("Your film shows here")
                    type: Theme.strongType
                }
                Caption {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: qsTr("Record something, and the edit plays at once.")
                }
            }
        }
    }
    Component {
        id: liveFilm

        LiveFilm {}
    }
    Loader {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 8
        active: stage.hasItem && stage.item.hasRender === true && App.editor !== undefined
            && App.editor.session.isRenderStale && !App.editor.session.isStaleDismissed
        sourceComponent: StaleNotice { onExportRequested: stage.exportRequested() }
    }
    Component {
        id: still

        StillFrame { item: stage.item }
    }
    Loader {
        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.bottom: canvas.bottom
        anchors.bottomMargin: 16
        active: App.recording.phase === Phase.Rendering || App.recording.phase === Phase.ExportingGif
        sourceComponent: ExportCard {}
    }
    Divider {
        x: 16
        width: parent.width - 32
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 52
    }
    Transport {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        time: stage.preview?.tOut ?? 0
        duration: stage.preview ? stage.preview.duration : stage.item.duration ?? 0
        playing: stage.preview?.isPlaying ?? false
        enabled: stage.hasFilm
        onToggled: stage.preview.togglePlaying()
        onStepped: frames => stage.preview.step(frames)
        onSkipped: seconds => stage.preview.skip(seconds)
    }
    Row {
        anchors.right: aspectMenu.left
        anchors.rightMargin: 16
        anchors.verticalCenter: aspectMenu.verticalCenter
        visible: stage.preview !== null && stage.width > 640
        spacing: 6
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: "speaker-off"
            size: Theme.sizeIconSmall
            color: Theme.textTertiary
        }
        Caption { text: qsTr("Silent preview") }
    }
    AspectMenu {
        id: aspectMenu

        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 12
        enabled: stage.hasItem
    }
}
