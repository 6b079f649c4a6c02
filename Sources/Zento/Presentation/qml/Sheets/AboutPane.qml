import QtQuick
import Zento

// What the program is, and where its licence can be read.
FocusScope {
    id: about

    signal closed()

    focus: true
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("About Zento")
    Keys.onEscapePressed: about.closed()
    IconButton {
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 10
        side: 28
        iconName: "close"
        text: qsTr("Close")
        onClicked: about.closed()
    }
    Brackets {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 44
        width: 128
        height: 128
        color: Theme.lineStrong
        radius: 12
        Logo {
            anchors.centerIn: parent
            size: 72
        }
    }
    Column {
        y: 192
        width: parent.width
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Zento"
            type: Theme.displayType
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Gap { size: 2 }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            text: App.desktop ? qsTr("Version %1 on %2").arg(App.updates.version).arg(App.desktop)
                              : qsTr("Version %1").arg(App.updates.version)
            color: Theme.textSecondary
        }
        Gap { size: 16 }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 300
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.textSecondary
            text: qsTr("A screen recorder that edits its own recordings. Everything is made on this computer.")
        }
    }
    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 56
        spacing: 8
        Button {
            size: Button.Small
            iconName: "refresh"
            enabled: !App.updates.isChecking
            text: qsTr("Check for updates")
            onClicked: App.updates.check()
        }
        Button {
            size: Button.Small
            text: qsTr("Licences")
            onClicked: Qt.openUrlExternally("https://www.gnu.org/licenses/gpl-3.0.html")
        }
    }
    Caption {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 24
        text: qsTr("Free software under the GNU General Public License 3")
    }
}
