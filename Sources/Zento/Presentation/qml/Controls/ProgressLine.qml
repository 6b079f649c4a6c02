import QtQuick
import QtQuick.Templates as T
import Zento

T.ProgressBar {
    id: bar

    property string label

    implicitWidth: 200
    implicitHeight: 6
    // Told at every tenth: a reader that speaks every percent is of no use.
    Accessible.name: label
    Accessible.description: qsTr("%1 percent").arg(Math.floor(value * 10) * 10)
    background: Rectangle {
        radius: 3
        color: Theme.controlPressed
    }
    contentItem: Item {
        Rectangle {
            width: Math.max(height, parent.width * bar.visualPosition)
            height: parent.height
            radius: 3
            color: Theme.accent
            visible: bar.value > 0
        }
    }
}
