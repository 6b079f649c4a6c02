import QtQuick
import Zento

// One of the program's icons, sharp at any scale of the display. Empty without a name.
Image {
    property string name
    property color color: Theme.textSecondary
    property real size: Theme.sizeIcon

    width: size
    height: size
    sourceSize: Qt.size(size, size)
    source: name.length > 0 ? "image://icon/" + name + "/" + String(color).slice(1) : ""
    Accessible.ignored: true
}
