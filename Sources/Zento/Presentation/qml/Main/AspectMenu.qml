import QtQuick
import Zento

// The frame's shape, beside the transport.
Button {
    id: control

    readonly property var icons: ({ "16:9": "aspect-wide", "9:16": "aspect-tall", "1:1": "aspect-square" })

    size: Button.Small
    iconName: icons[App.settings.aspect] ?? "aspect-wide"
    text: App.settings.aspect
    tip: qsTr("Shape of the frame")
    Accessible.name: qsTr("Shape of the frame")
    Accessible.description: text
    onClicked: menu.popup(0, -menu.implicitHeight - 4)
    Menu {
        id: menu

        Repeater {
            model: ["16:9", "9:16", "1:1"]
            delegate: MenuItem {
                required property string modelData

                iconName: control.icons[modelData]
                text: modelData
                onTriggered: App.settings.aspect = modelData
            }
        }
    }
}
