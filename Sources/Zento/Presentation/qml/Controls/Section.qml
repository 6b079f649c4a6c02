import QtQuick
import Zento

// A headed part of an inspector pane.
Column {
    id: section

    property string title
    property bool first: false
    property alias aside: aside.data
    default property alias content: body.data

    width: parent ? parent.width : implicitWidth
    topPadding: first ? 4 : 0
    bottomPadding: 12

    Divider {
        width: parent.width
        y: 0
        visible: !section.first
        height: section.first ? 0 : 1
    }
    Item {
        width: 1
        height: section.first ? 0 : 11
    }
    Item {
        width: parent.width
        height: section.title.length > 0 ? Math.max(16, aside.childrenRect.height) + 8 : 0
        visible: height > 0
        Label {
            anchors.left: parent.left
            y: Math.round((parent.height - 8 - height) / 2)
            text: section.title
            type: Theme.labelType
            weight: 600
            color: Theme.textSecondary
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Item {
            id: aside

            anchors.right: parent.right
            width: childrenRect.width
            height: childrenRect.height
        }
    }
    Column {
        id: body

        width: parent.width
    }
}
