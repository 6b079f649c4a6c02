import QtQuick
import QtQuick.Templates as T
import Zento

// A recording runs: its time, and the way to end it.
Item {
    id: panel

    property string elapsed

    signal stopped()

    implicitWidth: 260
    implicitHeight: 56
    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("Recording, %1").arg(elapsed)
    Panel {
        anchors.fill: parent
        elevation: Theme.floatingElevation
        radius: 28
    }
    RecordDot {
        x: 20
        anchors.verticalCenter: parent.verticalCenter
        diameter: 12
        halo: 5
        pulsing: true
    }
    Label {
        x: 46
        anchors.verticalCenter: parent.verticalCenter
        text: panel.elapsed
        type: Theme.timeType
        font.pixelSize: Math.round(18 * Theme.textScale)
        lineHeight: 24
        topPadding: 0
        bottomPadding: 0
        Accessible.ignored: true
    }
    T.Button {
        id: stop

        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 82
        implicitHeight: 40
        focusPolicy: Qt.StrongFocus
        text: qsTr("Stop")
        Accessible.name: text
        Accessible.onPressAction: if (stop.enabled) stop.clicked()
        onClicked: panel.stopped()
        Keys.onReturnPressed: panel.stopped()
        background: Rectangle {
            radius: 20
            color: stop.down ? Qt.darker(Theme.recordFill, 1.12)
                : stop.hovered ? Qt.lighter(Theme.recordFill, 1.12) : Theme.recordFill
            FocusRing {
                visible: stop.visualFocus
                targetRadius: 20
            }
        }
        contentItem: Item {
            Icon {
                x: 14
                anchors.verticalCenter: parent.verticalCenter
                name: "stop"
                size: Theme.sizeIconSmall
                color: Theme.inkOnRecordFill
            }
            Label {
                x: 36
                anchors.verticalCenter: parent.verticalCenter
                text: stop.text
                type: Theme.strongType
                color: Theme.inkOnRecordFill
                Accessible.ignored: true
            }
        }
    }
}
