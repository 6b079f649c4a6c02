import QtQuick
import Zento

// One tab of the inspector: a title and its sections.
ScrollColumn {
    id: pane

    property string title

    padding: 16
    Accessible.role: Accessible.Pane
    Accessible.name: title
    Item {
        width: parent.width
        height: 36
        Label {
            y: 6
            text: pane.title
            type: Theme.titleType
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
    }
}
