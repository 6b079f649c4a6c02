import QtQuick
import QtQuick.Templates as T
import Zento

T.MenuItem {
    id: item

    property string iconName
    property string shortcut
    property bool destructive: false

    implicitWidth: Math.ceil(10 + (iconName.length > 0 ? 26 : 0) + words.implicitWidth + (shortcut.length > 0 ? 24 + keys.implicitWidth : 0) + 10)
    implicitHeight: 32
    width: menu ? menu.width - 8 : implicitWidth
    opacity: enabled ? 1 : Theme.opacityDisabled
    Accessible.name: text
    Accessible.onPressAction: if (item.enabled) item.clicked()
    background: Rectangle {
        radius: 7
        color: item.highlighted || item.hovered ? Theme.overlayHover : "transparent"
    }
    contentItem: Item {
        Icon {
            id: icon

            x: 10
            anchors.verticalCenter: parent.verticalCenter
            visible: name.length > 0
            name: item.iconName
            size: Theme.sizeIconSmall
            color: item.destructive ? Theme.danger : Theme.textSecondary
        }
        Label {
            id: words

            anchors.left: icon.visible ? icon.right : parent.left
            anchors.leftMargin: 10
            anchors.right: keys.left
            anchors.verticalCenter: parent.verticalCenter
            text: item.text
            color: item.destructive ? Theme.danger : Theme.text
            Accessible.ignored: true
        }
        Label {
            id: keys

            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            text: item.shortcut
            type: Theme.labelType
            weight: 400
            color: Theme.textTertiary
            Accessible.ignored: true
        }
    }
}
