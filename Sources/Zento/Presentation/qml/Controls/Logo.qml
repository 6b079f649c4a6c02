import QtQuick
import Zento

// The program's sign. It is the same in both themes.
Image {
    property real size: 24

    width: size
    height: size
    sourceSize: Qt.size(size, size)
    source: "image://icon/logo/ffffff"
    Accessible.ignored: true
}
