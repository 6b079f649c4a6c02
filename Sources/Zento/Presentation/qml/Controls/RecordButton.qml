import QtQuick
import QtQuick.Templates as T
import Zento

// Records, or stops; the menu part chooses what to record.
Item {
    id: root

    property bool live: false
    property string elapsed
    property bool folded: false // a square with the dot alone
    property bool asks: false // in the desktop's dialog, each time something is chosen in the menu
    property bool hasWindows: true
    property string missing     // the sentence about what is not allowed yet; empty: all is
    readonly property bool usable: missing.length === 0

    signal recordScreen()
    signal chooseScreen()
    signal recordWindow()
    signal recordArea()
    signal stop()

    implicitHeight: 40
    implicitWidth: folded ? 56 : 176

    T.Button {
        id: main

        width: root.width - (menuPart.visible ? menuPart.width : 0)
        height: root.height
        enabled: root.usable || root.live
        opacity: enabled ? 1 : Theme.opacityDisabled
        focusPolicy: Qt.StrongFocus
        text: root.live ? qsTr("Stop") : qsTr("Record")
        Accessible.name: text
        Accessible.onPressAction: if (main.enabled) main.clicked()
        Accessible.description: root.live ? root.elapsed : root.missing
        onClicked: root.live ? root.stop() : root.recordScreen()
        Keys.onReturnPressed: main.clicked()
        background: Item {
            clip: menuPart.visible
            Rectangle {
                width: parent.width + (menuPart.visible ? 20 : 0)
                height: parent.height
                radius: 10
                color: root.live ? (main.hovered ? Qt.lighter(Theme.recordFill, 1.12) : Theme.recordFill)
                    : main.down ? Theme.controlPressed
                    : main.hovered || menuPart.hovered ? Theme.controlHover : Theme.control
                Behavior on color { ColorAnimation { duration: Theme.durationInstant } }
            }
        }
        contentItem: Item {
            RecordDot {
                visible: !root.live
                x: root.folded ? (parent.width - width) / 2 : 12
                anchors.verticalCenter: parent.verticalCenter
            }
            Rectangle {
                visible: root.live
                x: root.folded ? (parent.width - width) / 2 : 13
                anchors.verticalCenter: parent.verticalCenter
                width: 12
                height: 12
                radius: 3
                color: Theme.inkOnRecordFill
            }
            Label {
                visible: !root.folded
                x: 36
                anchors.verticalCenter: parent.verticalCenter
                text: main.text
                type: Theme.strongType
                color: root.live ? Theme.inkOnRecordFill : Theme.text
                Accessible.ignored: true
            }
            Label {
                visible: root.live && !root.folded
                anchors.right: parent.right
                anchors.rightMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                text: root.elapsed
                type: Theme.timeType
                color: Theme.inkOnRecordFill
                Accessible.ignored: true
            }
        }
    }
    T.Button {
        id: menuPart

        anchors.right: parent.right
        width: 36
        height: root.height
        visible: !root.live && !root.folded
        enabled: root.usable
        opacity: enabled ? 1 : Theme.opacityDisabled
        focusPolicy: Qt.StrongFocus
        text: qsTr("Choose what to record")
        Accessible.name: text
        Accessible.onPressAction: if (menuPart.enabled) menuPart.clicked()
        Accessible.role: Accessible.ButtonMenu
        onClicked: menu.popup(0, root.height + 4)
        Keys.onReturnPressed: menuPart.clicked()
        background: Item {
            clip: true
            Rectangle {
                x: -20
                width: parent.width + 20
                height: parent.height
                radius: 10
                color: menuPart.down ? Theme.controlPressed
                    : menuPart.hovered || main.hovered ? Theme.controlHover : Theme.control
                Behavior on color { ColorAnimation { duration: Theme.durationInstant } }
            }
            Divider {
                width: 1
                y: 10
                height: parent.height - 20
                color: Theme.lineStrong
            }
        }
        contentItem: Item {
            Icon {
                anchors.centerIn: parent
                name: "chevron-down"
                size: Theme.sizeIconSmall
            }
        }
        Menu {
            id: menu

            MenuItem {
                iconName: "screen"
                text: root.asks ? qsTr("Choose a screen…") : qsTr("Screen")
                onTriggered: root.asks ? root.chooseScreen() : root.recordScreen()
            }
            MenuItem {
                iconName: "window"
                visible: root.hasWindows
                height: visible ? implicitHeight : 0
                text: root.asks ? qsTr("Choose a window…") : qsTr("Window")
                onTriggered: root.recordWindow()
            }
            MenuItem {
                iconName: "area"
                text: root.asks ? qsTr("Mark an area…") : qsTr("Area")
                onTriggered: root.recordArea()
            }
        }
    }
    FocusRing {
        anchors.fill: main.visualFocus ? main : menuPart
        visible: main.visualFocus || menuPart.visualFocus
        targetRadius: 10
    }
    HoverHandler { id: over }
    Tip {
        text: root.missing.length > 0 ? root.missing : root.folded ? main.text : ""
        shown: text.length > 0 && over.hovered
    }
}
