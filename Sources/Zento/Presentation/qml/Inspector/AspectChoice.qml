import QtQuick
import Zento

Segmented {
    label: qsTr("Frame")
    model: [
        { value: "16:9", name: "16:9", icon: "aspect-wide" },
        { value: "9:16", name: "9:16", icon: "aspect-tall" },
        { value: "1:1", name: "1:1", icon: "aspect-square" }
    ]
    current: App.settings.aspect
    onPicked: value => App.settings.aspect = value
}
