import QtQuick
import Zento

// The tabs of the inspector: the film's on top, the program's at the foot.
Item {
    id: rail

    property string current: "look"
    readonly property var filmTabs: [
        { id: "look", icon: "tab-look", name: qsTr("Look") },
        { id: "edit", icon: "tab-edit", name: qsTr("Edit") },
        { id: "pointer", icon: "tab-pointer", name: qsTr("Pointer") },
        { id: "sound", icon: "tab-sound", name: qsTr("Sound") },
        { id: "webcam", icon: "tab-webcam", name: qsTr("Webcam") },
        { id: "text", icon: "tab-text", name: qsTr("Text") },
        { id: "share", icon: "tab-share", name: qsTr("Share") }
    ]
    readonly property var programTabs: [
        { id: "record", icon: "tab-record", name: qsTr("Record") },
        { id: "app", icon: "tab-app", name: qsTr("App") }
    ]
    readonly property var tabs: filmTabs.concat(programTabs)

    signal picked(string tab)

    function move(from, by) {
        const index = tabs.findIndex(tab => tab.id === from) + by
        if (index < 0 || index >= tabs.length)
            return
        picked(tabs[index].id)
        const item = index < filmTabs.length ? film.itemAt(index) : program.itemAt(index - filmTabs.length)
        item.forceActiveFocus(Qt.TabFocusReason)
    }

    width: Theme.sizeInspectorRail
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Settings")
    component Tab: RailTab {
        required property var modelData

        width: 48
        text: modelData.name
        iconName: modelData.icon
        checked: rail.current === modelData.id
        activeFocusOnTab: checked
        onClicked: rail.picked(modelData.id)
        Keys.onUpPressed: rail.move(modelData.id, -1)
        Keys.onDownPressed: rail.move(modelData.id, 1)
        Keys.onReturnPressed: rail.picked(modelData.id)
    }
    Column {
        x: 2
        spacing: 2
        Repeater {
            id: film

            model: rail.filmTabs
            delegate: Tab {}
        }
    }
    Column {
        x: 2
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 12
        spacing: 2
        Divider {
            x: 8
            width: 32
        }
        Gap { size: 4 }
        Repeater {
            id: program

            model: rail.programTabs
            delegate: Tab {}
        }
    }
}
