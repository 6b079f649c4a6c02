import QtQuick
import Zento

// The settings: one pane at a time, and the rail that chooses it.
FocusScope {
    id: inspector

    property string tab: "look"
    readonly property var panes: ({
        look: look, edit: edit, pointer: pointer, sound: sound, webcam: webcam,
        text: text, share: share, record: record, app: app
    })

    signal picked(string tab)
    signal aboutRequested()
    signal musicRequested(string way)

    width: Theme.sizeInspectorBody + Theme.sizeInspectorRail
    Loader {
        x: 16
        y: 4
        width: Theme.sizeInspectorBody - 32
        height: parent.height - 4
        sourceComponent: inspector.panes[inspector.tab] ?? look
    }
    Rail {
        anchors.right: parent.right
        height: parent.height
        current: inspector.tab
        onPicked: tab => inspector.picked(tab)
    }
    Component { id: look; LookPane {} }
    Component { id: edit; EditPane {} }
    Component { id: pointer; PointerPane {} }
    Component { id: sound; SoundPane { onMusicRequested: way => inspector.musicRequested(way) } }
    Component { id: webcam; WebcamPane {} }
    Component { id: text; TextPane {} }
    Component { id: share; SharePane {} }
    Component { id: record; RecordPane {} }
    Component { id: app; AppPane { onAboutRequested: inspector.aboutRequested() } }
}
