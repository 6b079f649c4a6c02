import QtQuick
import Zento

// A time that follows something on the strip.
Rectangle {
    id: bubble

    property real centerX: 0
    property real limit: 0 // of the strip
    property string text

    x: Math.round(Math.max(0, Math.min(limit - width, centerX - width / 2)))
    width: Math.ceil(time.implicitWidth) + 12
    height: 20
    radius: 5
    color: Theme.primary
    Label {
        id: time

        anchors.centerIn: parent
        text: bubble.text
        type: Theme.timeType
        color: Theme.inkOnPrimary
    }
}
