import QtQuick
import Zento

// Where the film is seen. `film` is what plays it; without one, the selected recording's picture
// stands on its background.
Rectangle {
    id: stage

    property Component film
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
        duration: stage.item.duration ?? 0
        enabled: false
    }
    AspectMenu {
        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 12
        enabled: stage.hasItem
    }
}
