import QtQuick
import Zento

Rectangle {
    implicitHeight: 1
    implicitWidth: 1
    color: Theme.line
}
