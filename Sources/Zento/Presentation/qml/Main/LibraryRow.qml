import QtQuick
import QtQuick.Templates as T
import Zento

// A recording of the library: its picture, name and application.
T.ItemDelegate {
    id: row

    required property int index
    required property string path
    required property string name
    required property real duration
    required property string appName
    required property bool hasRender
    required property bool isSelected
    property bool folded: false
    readonly property bool renaming: App.library.renaming === path

    signal menuRequested(real x, real y)

    function length() {
        const seconds = Math.round(duration)
        return Math.floor(seconds / 60) + ":" + String(seconds % 60).padStart(2, "0")
    }

    implicitHeight: folded ? 48 : Theme.sizeLibraryRow
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.onPressAction: if (row.enabled) row.clicked()
    Accessible.description: [appName, qsTr("%1 long").arg(length()), hasRender ? qsTr("Exported") : ""].filter(word => word.length > 0).join(", ")
    Accessible.selectable: true
    Accessible.selected: isSelected
    onClicked: {
        ListView.view.forceActiveFocus(Qt.MouseFocusReason)
        App.library.select(path)
    }
    background: Rectangle {
        visible: !row.folded
        radius: 10
        color: row.isSelected ? Theme.accentSoft : row.hovered ? Theme.control : "transparent"
        Behavior on color { ColorAnimation { duration: Theme.durationInstant } }
        FocusRing {
            visible: row.ListView.isCurrentItem && row.ListView.view.keyboardFocus
            targetRadius: 10
            gap: -2
        }
    }
    contentItem: Item {
        RecordingPicture {
            id: picture

            x: 8
            anchors.verticalCenter: parent.verticalCenter
            width: row.folded ? 56 : 72
            height: row.folded ? 36 : 44
            path: row.path
            version: row.hasRender ? "film?" + App.filmExport.renderGeneration : "raw"
            Rectangle {
                anchors.fill: parent
                anchors.margins: row.folded && row.isSelected ? -4 : -1
                radius: row.folded && row.isSelected ? 9 : 7
                color: "transparent"
                border.width: row.isSelected ? (row.folded ? 2 : 1.5) : 1
                border.color: row.isSelected ? Theme.accent : Theme.line
            }
            Rectangle {
                visible: !row.folded
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                anchors.margins: 3
                width: Math.ceil(time.implicitWidth) + 8
                height: 14
                radius: 3
                color: Qt.rgba(8 / 255, 9 / 255, 12 / 255, 0.78)
                Label {
                    id: time

                    anchors.centerIn: parent
                    text: row.length()
                    type: Theme.microType
                    family: Theme.monoFamily
                    color: "white"
                    Accessible.ignored: true
                }
            }
        }
        Column {
            visible: !row.folded && !row.renaming
            anchors.left: picture.right
            anchors.leftMargin: 10
            anchors.right: more.visible ? more.left : parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            Label {
                width: parent.width
                text: row.name
                weight: 500
                lineHeight: 16
                topPadding: 0
                bottomPadding: 0
                wrapMode: Text.Wrap
                elide: Text.ElideRight
                maximumLineCount: 2
                Accessible.ignored: true
            }
            Row {
                width: parent.width
                spacing: 4
                Caption {
                    width: Math.min(implicitWidth, parent.width - (mark.visible ? 76 : 0))
                    text: row.appName.length > 0 ? row.appName + (mark.visible ? " ·" : "") : ""
                    Accessible.ignored: true
                }
                Icon {
                    id: mark

                    visible: row.hasRender
                    name: "check"
                    size: Theme.sizeIconSmall
                    color: Theme.success
                }
                Caption {
                    visible: row.hasRender
                    text: qsTr("Exported")
                    Accessible.ignored: true
                }
            }
        }
        TextBox {
            id: field

            visible: row.renaming
            anchors.left: picture.right
            anchors.leftMargin: 6
            anchors.right: parent.right
            anchors.rightMargin: 4
            anchors.verticalCenter: parent.verticalCenter
            label: qsTr("New name")
            onVisibleChanged: {
                if (!visible)
                    return
                text = row.name
                selectAll()
                forceActiveFocus(Qt.OtherFocusReason)
            }
            onEditingFinished: if (row.renaming) {
                App.library.rename(row.path, text)
                App.library.renaming = ""
            }
            // The list has the keys again, as before, and would hand them on to the field it kept.
            function leave() {
                focus = false
                row.ListView.view.forceActiveFocus(Qt.OtherFocusReason)
            }
            onAccepted: leave()
            Keys.onEscapePressed: {
                App.library.renaming = ""
                leave()
            }
        }
        IconButton {
            id: more

            visible: !row.folded && !row.renaming && row.hovered
            anchors.right: parent.right
            anchors.rightMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            side: 28
            iconName: "more"
            text: qsTr("More")
            activeFocusOnTab: false
            onClicked: row.menuRequested(x + width - row.width, y + height)
        }
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: point => {
            App.library.select(row.path)
            row.menuRequested(point.position.x - row.width, point.position.y)
        }
    }
    Tip {
        text: row.name
        shown: row.folded && row.hovered
    }
}
