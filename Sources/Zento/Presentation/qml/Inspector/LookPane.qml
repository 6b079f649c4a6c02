import QtQuick
import Zento

Pane {
    id: pane

    readonly property var settings: App.settings
    readonly property var groups: Gallery.backgroundGroups
    readonly property int picturesGroup: groups.length
    property int group: {
        const found = Gallery.groupOf(settings.backgroundID)
        return found >= 0 ? found : picturesGroup
    }
    readonly property var entries: {
        if (group < picturesGroup)
            return groups[group].entries.map(entry => ({ value: entry.id, name: entry.name, address: "background/" + entry.id }))
        const list = []
        if (Gallery.desktopPicture.length > 0)
            list.push({ value: "desktop", name: qsTr("Your desktop"), address: "picture/" + encodeURIComponent(Gallery.desktopPicture) })
        if (settings.customBackgroundPath.length > 0)
            list.push({ value: "custom", name: qsTr("Your picture"), address: "picture/" + encodeURIComponent(settings.customBackgroundPath) })
        for (const wallpaper of Gallery.wallpapers)
            list.push({ value: wallpaper.id, name: wallpaper.name, address: "picture/" + encodeURIComponent(wallpaper.path) })
        return list
    }

    title: qsTr("Look")
    onGroupChanged: if (group === picturesGroup) Gallery.findWallpapers()

    Section {
        title: qsTr("Background")
        aside: Caption {
            readonly property var names: Gallery.wallpapers

            text: names, Gallery.backgroundName(pane.settings.backgroundID)
            width: Math.min(implicitWidth, 150)
        }
        ChoiceGroup {
            x: -4
            width: parent.width + 8
            label: qsTr("Kind of background")
            cellWidth: 0
            cellHeight: 24
            spacing: 2
            focusRadius: 6
            focusGap: 0
            model: pane.groups.map((one, index) => ({ value: index, name: one.name }))
                .concat([{ value: pane.picturesGroup, name: qsTr("Pictures") }])
            current: pane.group
            onPicked: value => pane.group = value
            visual: ChipVisual {}
        }
        Gap { size: 10 }
        ChoiceGroup {
            label: qsTr("Background")
            visible: pane.entries.length > 0
            columns: 4
            cellWidth: Theme.sizeSwatchWidth
            cellHeight: Theme.sizeSwatchHeight
            tips: true
            model: pane.entries
            current: pane.settings.backgroundID
            onPicked: value => pane.settings.backgroundID = value
            visual: SwatchVisual {}
        }
        Caption {
            width: parent.width
            visible: pane.group === pane.picturesGroup && pane.entries.length === 0
            text: qsTr("This desktop offers no pictures.")
        }
        Gap {
            size: 10
            visible: chooser.visible
        }
        Button {
            id: chooser

            visible: pane.group === pane.picturesGroup
            size: Button.Small
            iconName: "picture"
            text: qsTr("Choose picture…")
            onClicked: pictureChooser.open(qsTr("Choose a background"))
            FileChooser {
                id: pictureChooser

                onChosen: path => {
                    pane.settings.customBackgroundPath = path
                    pane.settings.backgroundID = "custom"
                }
                onFailed: sentence => App.messages.errorMessage = sentence
            }
        }
    }
    Section {
        title: qsTr("Card")
        ValueSlider {
            width: parent.width
            label: qsTr("Margin")
            value: pane.settings.padding
            standard: App.defaults.padding
            to: 0.2
            step: 0.005
            factor: 100
            decimals: 1
            unit: "%"
            spokenUnit: qsTr("percent")
            enabled: !pane.settings.cropToFill
            onEdited: value => pane.settings.padding = value
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Corners")
            value: pane.settings.cornerRadius
            standard: App.defaults.cornerRadius
            to: 60
            step: 1
            unit: "px"
            spokenUnit: qsTr("pixels")
            onEdited: value => pane.settings.cornerRadius = value
        }
        ValueSlider {
            width: parent.width
            label: qsTr("Shadow")
            value: pane.settings.shadowOpacity
            standard: App.defaults.shadowOpacity
            to: 1
            step: 0.05
            factor: 100
            unit: "%"
            spokenUnit: qsTr("percent")
            onEdited: value => pane.settings.shadowOpacity = value
        }
    }
    Section {
        title: qsTr("Frame")
        AspectChoice { width: parent.width }
        Gap { size: 4 }
        ToggleRow {
            width: parent.width
            text: qsTr("Fill the frame")
            help: qsTr("Crops the recording instead of leaving a margin.")
            checked: pane.settings.cropToFill
            onToggled: pane.settings.cropToFill = checked
        }
    }
}
