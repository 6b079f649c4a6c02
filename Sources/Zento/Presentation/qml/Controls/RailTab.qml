import QtQuick
import QtQuick.Templates as T
import Zento

T.AbstractButton {
    id: tab

    property string iconName

    implicitWidth: 48
    implicitHeight: 48
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.PageTab
    Accessible.name: text
    Accessible.onPressAction: if (tab.enabled) tab.clicked()
    Accessible.checkable: true
    Accessible.checked: checked
    background: Rectangle {
        radius: 10
        color: tab.checked ? Theme.accentSoft : tab.hovered ? Theme.control : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.durationInstant } }
        FocusRing {
            visible: tab.visualFocus
            targetRadius: 10
            gap: 0
        }
    }
    contentItem: Item {
        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            y: 6
            name: tab.iconName
            color: words.color
        }
        Label {
            id: words

            anchors.horizontalCenter: parent.horizontalCenter
            y: 29
            width: Math.min(implicitWidth, parent.width)
            text: tab.text
            type: Theme.microType
            color: tab.checked ? Theme.accent : tab.hovered ? Theme.text : Theme.textSecondary
            Accessible.ignored: true
        }
    }
}
