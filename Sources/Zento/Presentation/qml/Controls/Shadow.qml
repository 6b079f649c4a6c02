import QtQuick
import Zento

// The shadow under a rounded panel that fills the parent.
BorderImage {
    property var elevation: Theme.popoverElevation
    property int cornerRadius: 10
    readonly property int patch: elevation.blur + cornerRadius

    anchors.fill: parent
    anchors.margins: -elevation.blur
    anchors.topMargin: -elevation.blur + elevation.y
    anchors.bottomMargin: -elevation.blur - elevation.y
    border { left: patch; right: patch; top: patch; bottom: patch }
    source: "image://shadow/" + elevation.blur + "/" + cornerRadius + "/" + String(elevation.color).slice(1)
    Accessible.ignored: true
}
