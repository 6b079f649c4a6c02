import QtQuick
import QtQuick.Templates as T
import Zento

// One choice of a list that drops down: {value, name}.
T.ComboBox {
    id: control

    property string label
    property var current
    property string iconName
    property bool overlay: false

    signal picked(var value)

    implicitWidth: 264
    implicitHeight: Theme.sizeControl
    opacity: enabled ? 1 : Theme.opacityDisabled
    focusPolicy: Qt.StrongFocus
    textRole: "name"
    valueRole: "value"
    currentIndex: {
        const list = model ?? []
        for (let i = 0; i < list.length; ++i)
            if (list[i].value === current)
                return i
        return -1
    }
    Accessible.name: label
    Accessible.description: displayText
    onActivated: index => picked(model[index].value)
    Keys.onReturnPressed: popup.open()

    background: Rectangle {
        radius: Theme.radiusControl
        color: control.down ? Theme.controlPressed : control.hovered ? Theme.controlHover
            : control.overlay ? Theme.controlOnOverlay : Theme.control
        FocusRing { visible: control.visualFocus }
    }
    contentItem: Item {
        Icon {
            id: icon

            x: 10
            anchors.verticalCenter: parent.verticalCenter
            visible: name.length > 0
            name: control.iconName
            size: Theme.sizeIconSmall
            color: Theme.text
        }
        Label {
            anchors.left: icon.visible ? icon.right : parent.left
            anchors.leftMargin: icon.visible ? 8 : 10
            anchors.right: parent.right
            anchors.rightMargin: 32
            anchors.verticalCenter: parent.verticalCenter
            text: control.displayText
            Accessible.ignored: true
        }
    }
    indicator: Icon {
        x: control.width - width - 8
        anchors.verticalCenter: parent.verticalCenter
        name: "chevron-down"
        size: Theme.sizeIconSmall
    }
    delegate: T.ItemDelegate {
        id: item

        required property int index
        required property var modelData

        width: ListView.view.width
        implicitHeight: 32
        highlighted: control.highlightedIndex === index
        text: modelData.name
        Accessible.name: text
        background: Rectangle {
            radius: 7
            color: item.highlighted || item.hovered ? Theme.overlayHover : "transparent"
        }
        contentItem: Item {
            Label {
                anchors.fill: parent
                anchors.leftMargin: 10
                anchors.rightMargin: 30
                text: item.text
                topPadding: lead + 6
                Accessible.ignored: true
            }
            Icon {
                anchors.right: parent.right
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                visible: item.index === control.currentIndex
                name: "check"
                size: Theme.sizeIconSmall
                color: Theme.accent
            }
        }
    }
    popup: T.Popup {
        y: control.height + 4
        width: control.width
        implicitHeight: Math.min(contentItem.implicitHeight + 8, 8 + 8 * 32)
        padding: 4
        margins: 8
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: control.popup.visible ? control.delegateModel : null
            currentIndex: control.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: ScrollBar {}
        }
        background: Panel {}
    }
}
