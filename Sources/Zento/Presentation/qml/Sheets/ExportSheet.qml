import QtQuick
import Zento

// What the film is written as.
Sheet {
    id: sheet

    readonly property var settings: App.settings
    readonly property var item: App.library.selectedItem
    readonly property int pixelHeight: settings.resolution === "4K" ? 2160 : settings.resolution === "1440p" ? 1440 : 1080
    readonly property int pixelWidth: {
        const wide = settings.aspect === "9:16" ? pixelHeight * 9 / 16 : settings.aspect === "1:1" ? pixelHeight : pixelHeight * 16 / 9
        return Math.floor(Math.floor(wide) / 2) * 2
    }

    // Where the film goes: where the user wants it, else beside the recording.
    readonly property string target: {
        const usual = String(item.film ?? "")
        const end = settings.exportFormat === "gif" ? ".gif" : ".mp4"
        const chosen = App.filmExport.destination
        return (chosen.length > 0 ? chosen : usual).replace(/\.(mp4|gif)$/, "") + end
    }
    property string complaint

    onOpened: complaint = ""
    function start() {
        close()
        App.filmExport.start()
    }

    firstFocus: accept
    contentItem: FocusScope {
        implicitHeight: body.implicitHeight
        Accessible.role: Accessible.Dialog
        Accessible.name: heading.text
        Keys.onReturnPressed: sheet.start()
        Keys.onEnterPressed: sheet.start()

        component Line: Item {
            property string label
            default property alias content: slot.data

            x: 24
            width: 512
            height: 44
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: parent.label
                color: Theme.textSecondary
                Accessible.ignored: true
            }
            Item {
                id: slot

                x: 108
                width: parent.width - 108
                height: parent.height
            }
        }
        Column {
            id: body

            width: parent.width
            Item {
                width: parent.width
                height: 112
                RecordingPicture {
                    x: 24
                    y: 24
                    width: 128
                    height: 72
                    radius: 8
                    path: sheet.item.path ?? ""
                }
                Column {
                    x: 168
                    anchors.verticalCenter: parent.verticalCenter
                    anchors.verticalCenterOffset: 4
                    width: parent.width - 192
                    Label {
                        id: heading

                        text: qsTr("Export video")
                        type: Theme.sheetType
                        Accessible.role: Accessible.Heading
                        Accessible.name: text
                    }
                    Label {
                        width: parent.width
                        text: sheet.item.name ?? ""
                        color: Theme.textSecondary
                    }
                }
            }
            Line {
                label: qsTr("Format")
                Segmented {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width
                    overlay: true
                    label: qsTr("Format")
                    model: [{ value: "mp4", name: qsTr("MP4 film") }, { value: "gif", name: qsTr("GIF picture") }]
                    current: sheet.settings.exportFormat
                    onPicked: value => sheet.settings.exportFormat = value
                }
            }
            Line {
                label: qsTr("Shape")
                AspectChoice {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width
                    overlay: true
                }
            }
            Line {
                label: qsTr("Size")
                Segmented {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width
                    overlay: true
                    label: qsTr("Size")
                    model: ["1080p", "1440p", "4K"].map(size => ({ value: size, name: size }))
                    current: sheet.settings.resolution
                    onPicked: value => sheet.settings.resolution = value
                }
            }
            Line {
                label: qsTr("Frame rate")
                Segmented {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width
                    overlay: true
                    label: qsTr("Frame rate")
                    model: [24, 30, 60].map(rate => ({ value: rate, name: String(rate) }))
                    current: sheet.settings.fps
                    onPicked: value => sheet.settings.fps = value
                }
            }
            Line {
                label: qsTr("Save to")
                TextBox {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width - change.width - 8
                    readOnly: true
                    iconName: "folder"
                    label: qsTr("Save to")
                    value: sheet.target.split("/").slice(-2).join(" › ")
                }
                Button {
                    id: change

                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    overlay: true
                    text: qsTr("Change…")
                    onClicked: chooser.save(qsTr("Save the film"), sheet.target)
                }
                FileChooser {
                    id: chooser

                    onChosen: path => App.filmExport.destination = path
                    onFailed: sentence => sheet.complaint = sentence
                }
            }
            Line {
                label: qsTr("Afterwards")
                ToggleRow {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width
                    text: qsTr("Show in folder when done")
                    checked: sheet.settings.revealAfterExport
                    onToggled: sheet.settings.revealAfterExport = checked
                }
            }
            Label {
                x: 132
                width: 404
                visible: text.length > 0
                text: sheet.complaint
                type: Theme.captionType
                wrapMode: Text.WordWrap
                color: Theme.warning
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            Gap {}
            SheetFooter {
                summary: qsTr("%1 × %2 at %3").arg(sheet.pixelWidth).arg(sheet.pixelHeight).arg(sheet.settings.fps)
                Button {
                    kind: Button.Quiet
                    overlay: true
                    text: qsTr("Cancel")
                    onClicked: sheet.close()
                }
                Button {
                    id: accept

                    kind: Button.Primary
                    iconName: "export"
                    text: qsTr("Export")
                    onClicked: sheet.start()
                }
            }
        }
    }
}
