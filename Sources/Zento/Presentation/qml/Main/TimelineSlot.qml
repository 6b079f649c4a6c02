import QtQuick
import Zento

// The timeline's place. `timeline` fills it; without one the empty lanes are shown.
Rectangle {
    id: slot

    property Component timeline: App.editor && App.library.selectedItem.path !== undefined ? strips : null
    readonly property var lanes: [
        { icon: "film", name: qsTr("Video"), y: 24, height: 56 },
        { icon: "zoom", name: qsTr("Zooms"), y: 84, height: 32 },
        { icon: "tab-sound", name: qsTr("Sound"), y: 120, height: 40 },
        { icon: "words", name: qsTr("Words"), y: 164, height: 28 }
    ]

    height: Theme.timelineTotal
    radius: Theme.radiusPanel
    color: Theme.base
    border.width: 1
    border.color: Theme.line
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Timeline")
    Loader {
        anchors.fill: parent
        anchors.margins: 12
        anchors.leftMargin: Theme.timelinePadding
        anchors.rightMargin: Theme.timelinePadding
        sourceComponent: slot.timeline ?? empty
    }
    Component {
        id: strips

        Timeline {}
    }
    Component {
        id: empty

        Item {
            opacity: Theme.opacityDisabled
            Repeater {
                model: slot.lanes
                delegate: Item {
                    id: lane

                    required property var modelData

                    y: modelData.y
                    width: parent.width
                    height: modelData.height
                    Icon {
                        anchors.verticalCenter: parent.verticalCenter
                        name: lane.modelData.icon
                        size: Theme.sizeIconSmall
                        color: Theme.textTertiary
                    }
                    Caption {
                        x: 24
                        anchors.verticalCenter: parent.verticalCenter
                        text: lane.modelData.name
                        weight: 500
                    }
                    Rectangle {
                        x: Theme.timelineGutter
                        width: parent.width - x
                        height: parent.height
                        radius: Theme.radiusControl
                        color: Theme.well
                        opacity: lane.modelData.y === 24 ? 1 : 0.6
                    }
                }
            }
        }
    }
}
