import QtQuick
import QtQuick.Templates as T
import Zento

// The tooltip of the item it stands in.
Loader {
    id: tip

    property string text
    property string shortcut
    property bool shown: false
    readonly property bool pressed: parent !== null && parent.down === true
    property bool used: false // no explanation for what was just pressed

    onPressedChanged: if (pressed) used = true

    anchors.fill: parent
    active: shown && !used
    onShownChanged: if (!shown) used = false
    sourceComponent: Item {
        Timer {
            interval: Theme.durationTooltipDelay
            running: true
            onTriggered: popup.open()
        }
        T.ToolTip {
            id: popup

            x: Math.round((parent.width - width) / 2)
            y: parent.height + 6
            margins: 6
            leftPadding: 10
            rightPadding: 10
            topPadding: 6
            bottomPadding: 6
            implicitWidth: Math.min(320, row.implicitWidth + 20)
            implicitHeight: row.implicitHeight + 12
            closePolicy: T.Popup.CloseOnPressOutsideParent
            contentItem: Row {
                id: row

                spacing: 8
                Label {
                    width: Math.min(implicitWidth, 300 - (keys.visible ? keys.width + 8 : 0))
                    text: tip.text
                    type: Theme.labelType
                    color: Theme.chrome
                    wrapMode: Text.Wrap
                }
                Label {
                    id: keys

                    visible: text.length > 0
                    text: tip.shortcut
                    type: Theme.labelType
                    color: Theme.chrome
                    opacity: 0.66
                }
            }
            background: Rectangle {
                radius: 7
                color: Theme.text
            }
        }
    }
}
