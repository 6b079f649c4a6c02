import QtQuick
import QtQuick.Templates as T
import Zento

Swatch {
    required property T.AbstractButton button
    required property var entry

    anchors.fill: parent
    address: entry.address
    chosen: button.checked
}
