import QtQuick
import Zento

// The viewfinder's four corners.
Item {
    id: brackets

    property color color: Theme.controlBorder
    property real radius: 10
    property real arm: 16
    property real thickness: 2

    Accessible.ignored: true
    Repeater {
        model: 4
        delegate: Item {
            required property int index

            x: index % 2 === 0 ? 0 : brackets.width - brackets.arm
            y: index < 2 ? 0 : brackets.height - brackets.arm
            width: brackets.arm
            height: brackets.arm
            clip: true
            Rectangle {
                x: parent.index % 2 === 0 ? 0 : -width + parent.width
                y: parent.index < 2 ? 0 : -height + parent.height
                width: brackets.arm * 2
                height: brackets.arm * 2
                radius: brackets.radius
                color: "transparent"
                border.width: brackets.thickness
                border.color: brackets.color
            }
        }
    }
}
