import QtQuick
import Zento

// The lower edge of a sheet: a summary on the left, the actions on the right.
Item {
    id: footer

    property string summary
    property bool line: true
    default property alias actions: row.data

    width: parent ? parent.width : 0
    implicitHeight: 68
    Divider {
        width: parent.width
        visible: footer.line
    }
    Caption {
        anchors.left: parent.left
        anchors.leftMargin: 24
        anchors.right: row.left
        anchors.rightMargin: 12
        anchors.verticalCenter: row.verticalCenter
        text: footer.summary
    }
    Row {
        id: row

        anchors.right: parent.right
        anchors.rightMargin: 24
        y: 16
        spacing: 8
    }
}
