import QtQuick
import QtQuick.Templates as T
import Zento

T.MenuSeparator {
    implicitHeight: 9
    contentItem: Item {
        Divider {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.margins: 10
            y: 4
        }
    }
}
