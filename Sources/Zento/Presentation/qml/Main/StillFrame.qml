import QtQuick
import Zento

// The selected recording as a picture: its background, and the card as the settings shape it. It
// stands in until the film itself is shown.
Item {
    id: still

    property var item
    readonly property var settings: App.settings
    readonly property string background: {
        const id = settings.backgroundID
        const path = id === "desktop" ? Gallery.desktopPicture
            : id === "custom" ? settings.customBackgroundPath
            : id.startsWith("wallpaper:") ? id.slice(10) : ""
        return path.length > 0 ? "picture/" + encodeURIComponent(path) : "background/" + encodeURIComponent(id)
    }
    // The settings' lengths are of a film 1080 high.
    readonly property real unit: height / 1080
    readonly property real inset: settings.cropToFill ? 0 : settings.padding * height

    Swatch {
        anchors.fill: parent
        radius: 4
        address: still.background
    }
    Item {
        id: card

        readonly property real room: Math.min(still.width - 2 * still.inset, (still.height - 2 * still.inset) * 16 / 9)

        anchors.centerIn: parent
        width: Math.floor(still.settings.cropToFill ? still.width : room)
        height: Math.floor(still.settings.cropToFill ? still.height : room * 9 / 16)
        Shadow {
            visible: still.settings.shadowOpacity > 0 && !still.settings.cropToFill
            opacity: still.settings.shadowOpacity
            elevation: ({ y: Math.round(20 * still.unit), blur: Math.max(8, Math.round(60 * still.unit)), color: "#ff000000", border: "#00000000" })
            cornerRadius: Math.round(still.settings.cornerRadius * still.unit)
        }
        RecordingPicture {
            anchors.fill: parent
            path: still.item.path ?? ""
            version: "raw"
            radius: still.settings.cropToFill ? 4 : Math.round(still.settings.cornerRadius * still.unit)
        }
    }
}
