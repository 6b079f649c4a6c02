import QtQuick
import Zento

// The three ways to music: made here, found online, a file of one's own.
Sheet {
    id: sheet

    readonly property var music: App.music
    property string way: "made"

    function use(path) { music.useFile(path) }

    sheetWidth: 680
    firstFocus: ways
    onClosed: music.endSearch()
    contentItem: FocusScope {
        implicitHeight: body.implicitHeight
        Accessible.role: Accessible.Dialog
        Accessible.name: heading.text

        component TrackRow: Item {
            id: row

            property string title
            property string by
            property string length
            property string license
            property bool isUsed
            property bool canPlay: false
            property bool isPlaying: false
            property bool isWaiting: false // to be heard
            property real progress: -1 // under way: from 0 to 1, or 2 where nobody knows
            default property alias aside: actions.data

            signal playToggled()

            width: parent.width
            height: 56
            Accessible.role: Accessible.ListItem
            Accessible.name: [title, by, length, license].filter(text => text.length > 0).join(", ")
            Rectangle {
                anchors.fill: parent
                visible: row.isPlaying
                radius: Theme.radiusControl
                color: Theme.controlOnOverlay
            }
            Icon {
                x: 8
                anchors.verticalCenter: parent.verticalCenter
                visible: !row.canPlay
                name: "music"
                color: Theme.textSecondary
            }
            IconButton {
                x: 8
                anchors.verticalCenter: parent.verticalCenter
                visible: row.canPlay
                side: 36
                filled: !row.isPlaying
                overlay: true
                iconName: row.isPlaying ? "pause" : "play"
                text: row.isPlaying ? qsTr("Stop %1").arg(row.title) : qsTr("Listen to %1").arg(row.title)
                onClicked: row.playToggled()
            }
            Spinner {
                x: 52
                anchors.verticalCenter: parent.verticalCenter
                visible: row.isWaiting
            }
            Column {
                x: row.canPlay ? (row.isWaiting ? 78 : 56) : 40
                anchors.verticalCenter: parent.verticalCenter
                width: facts.x - x - 12
                Label {
                    width: parent.width
                    text: row.title
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
                Label {
                    width: parent.width
                    visible: text.length > 0
                    text: row.by
                    type: Theme.captionType
                    color: Theme.textSecondary
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
            }
            Row {
                id: facts

                anchors.right: actions.left
                anchors.rightMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                spacing: 12
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.length
                    type: Theme.captionType
                    family: Theme.monoFamily
                    color: Theme.textSecondary
                    Accessible.ignored: true
                }
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.license.length > 0
                    width: 92
                    height: 18
                    radius: 4
                    color: Theme.controlOnOverlay
                    Label {
                        anchors.centerIn: parent
                        text: row.license
                        type: Theme.captionType
                        color: Theme.textSecondary
                        Accessible.ignored: true
                    }
                }
            }
            Item {
                id: actions

                anchors.right: parent.right
                width: 112
                height: parent.height
                Row {
                    anchors.right: parent.right
                    anchors.rightMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.isUsed || row.progress >= 0
                    spacing: 6
                    Icon {
                        anchors.verticalCenter: parent.verticalCenter
                        visible: row.isUsed && row.progress < 0
                        name: "check"
                        color: Theme.success
                    }
                    Spinner {
                        anchors.verticalCenter: parent.verticalCenter
                        visible: row.progress >= 0
                    }
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        text: row.progress > 1 ? qsTr("Downloading")
                            : row.progress >= 0 ? qsTr("%1 %").arg(Math.round(row.progress * 100))
                            : qsTr("In the film")
                        type: Theme.captionType
                        color: row.progress < 0 ? Theme.success : Theme.textSecondary
                        Accessible.role: Accessible.StaticText
                        Accessible.name: text
                    }
                }
            }
        }
        component UseButton: Button {
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            size: Button.Small
            overlay: true
            text: qsTr("Use")
        }
        Column {
            id: body

            width: parent.width
            Item {
                width: parent.width
                height: 64
                Label {
                    id: heading

                    x: 24
                    y: 22
                    text: qsTr("Music")
                    type: Theme.sheetType
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                IconButton {
                    anchors.right: parent.right
                    anchors.rightMargin: 20
                    y: 16
                    overlay: true
                    iconName: "close"
                    text: qsTr("Close")
                    onClicked: sheet.close()
                }
            }
            Segmented {
                id: ways

                x: 24
                width: 320
                overlay: true
                label: qsTr("Where from")
                model: [
                    { value: "made", name: qsTr("Made by Zento") },
                    { value: "online", name: qsTr("Online") },
                    { value: "file", name: qsTr("From a file") }
                ]
                current: sheet.way
                onPicked: value => sheet.way = value
            }
            Gap { size: 16 }
            Item {
                width: parent.width
                height: 384
                Column {
                    x: 24
                    width: parent.width - 48
                    visible: sheet.way === "made"
                    Repeater {
                        model: sheet.music.library
                        TrackRow {
                            required property var modelData

                            title: modelData.name
                            by: qsTr("%1 beats a minute").arg(modelData.bpm)
                            length: "1:00"
                            isUsed: sheet.music.usedTrackID === modelData.id
                            progress: modelData.progress
                            UseButton {
                                visible: !parent.parent.isUsed && parent.parent.progress < 0
                                Accessible.name: qsTr("Use %1").arg(parent.parent.title)
                                onClicked: sheet.music.useMade(parent.parent.modelData.id)
                            }
                        }
                    }
                }
                Column {
                    x: 24
                    width: parent.width - 48
                    visible: sheet.way === "online"
                    spacing: 8
                    Item {
                        width: parent.width
                        height: query.height
                        TextBox {
                            id: query

                            width: parent.width - go.width - 8
                            iconName: "search"
                            label: qsTr("Search for music")
                            placeholderText: qsTr("Mood or instrument, for instance calm piano")
                            onAccepted: sheet.music.runSearch(text)
                        }
                        Button {
                            id: go

                            anchors.right: parent.right
                            anchors.verticalCenter: parent.verticalCenter
                            overlay: true
                            text: qsTr("Search")
                            enabled: query.text.trim().length > 0 && !sheet.music.isSearching
                            onClicked: sheet.music.runSearch(query.text)
                        }
                    }
                    Spinner {
                        anchors.horizontalCenter: parent.horizontalCenter
                        visible: sheet.music.isSearching
                    }
                    ListView {
                        width: parent.width
                        height: 334
                        clip: true
                        boundsBehavior: Flickable.StopAtBounds
                        model: sheet.music.results
                        Accessible.role: Accessible.List
                        Accessible.name: qsTr("Tracks found")
                        delegate: TrackRow {
                            required property var modelData

                            width: ListView.view.width
                            title: modelData.title
                            by: modelData.creator
                            length: modelData.duration
                            license: modelData.license
                            canPlay: true
                            isPlaying: sheet.music.previewingID === modelData.id
                            isWaiting: isPlaying && !sheet.music.isPreviewHeard
                            onPlayToggled: sheet.music.togglePreview(modelData.id)
                            isUsed: sheet.music.usedTrackID === modelData.id
                            progress: sheet.music.usingTrackID === modelData.id ? 2 : -1
                            UseButton {
                                visible: !parent.parent.isUsed && parent.parent.progress < 0
                                enabled: sheet.music.usingTrackID.length === 0
                                Accessible.name: qsTr("Use %1").arg(parent.parent.title)
                                onClicked: sheet.music.useFound(parent.parent.modelData.id)
                            }
                        }
                    }
                }
                Column {
                    x: 24
                    width: parent.width - 48
                    visible: sheet.way === "file"
                    spacing: 12
                    Caption {
                        width: parent.width
                        text: qsTr("Any sound file will do. It is copied into the recording, and nothing leaves this computer.")
                    }
                    Button {
                        overlay: true
                        iconName: "folder"
                        text: qsTr("Choose file…")
                        onClicked: chooser.open(qsTr("Choose music"))
                    }
                }
            }
            SheetFooter {
                summary: sheet.music.note
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    visible: sheet.way === "online"
                    text: qsTr("Creative Commons tracks by way of Openverse")
                    type: Theme.captionType
                    color: Theme.textSecondary
                }
            }
        }
        FileChooser {
            id: chooser

            onChosen: path => {
                sheet.music.useFile(path)
                sheet.close()
            }
            onFailed: sentence => App.messages.errorMessage = sentence
        }
    }
}
