import QtQuick
import Zento

// The keys of a shortcut: "Ctrl", "Shift", "N".
Row {
    id: caps

    property var keys: []

    spacing: 4
    Accessible.ignored: true
    Repeater {
        model: caps.keys
        delegate: Rectangle {
            required property string modelData

            width: Math.max(20, Math.ceil(name.implicitWidth) + 12)
            height: 20
            radius: 5
            color: Theme.lineStrong
            Rectangle {
                anchors.fill: parent
                anchors.margins: 1
                anchors.bottomMargin: 2
                radius: 4
                color: Theme.control
            }
            Label {
                id: name

                anchors.centerIn: parent
                text: parent.modelData
                type: Theme.captionType
                weight: 500
                color: Theme.textSecondary
                Accessible.ignored: true
            }
        }
    }
}
