import QtQuick
import QtQuick.Window
import Zento

Window {
    id: about

    width: 400
    height: 440
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    flags: Qt.Dialog
    title: qsTr("About Zento")
    color: Theme.chrome

    AboutPane {
        anchors.fill: parent
        onClosed: about.close()
    }
}
