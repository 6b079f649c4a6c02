import QtQuick
import Zento

// The first thing a new user sees.
Sheet {
    id: sheet

    readonly property bool ready: App.permissions.canRecord
    // On one line, as it is typed.
    readonly property string inputCommand: App.inputCommand.replace(/ /g, "\u00a0").replace(/-/g, "\u2011")

    signal recordRequested()

    firstFocus: sheet.ready ? record : look
    closePolicy: Sheet.CloseOnEscape
    contentItem: Item {
        implicitHeight: body.y + body.implicitHeight
        Accessible.role: Accessible.Dialog
        Accessible.name: heading.text
        Swatch {
            id: art

            width: parent.width
            height: 148
            radius: Theme.radiusSheet
            address: "background/dawn"
        }
        Item {
            width: parent.width
            height: 148
            clip: true
            Rectangle {
                x: 63
                y: 35
                width: parent.width - 126
                height: 260
                radius: 6
                color: Qt.rgba(1, 1, 1, 0.94)
                // A window as a sketch: bars for its words.
                Repeater {
                    model: [
                        { x: 16, y: 16, w: 76, h: 8, c: "#14574B" }, { x: 16, y: 44, w: 58, h: 6, c: "#B9BDC9" },
                        { x: 16, y: 62, w: 66, h: 6, c: "#B9BDC9" }, { x: 16, y: 80, w: 50, h: 6, c: "#B9BDC9" },
                        { x: 120, y: 16, w: 110, h: 10, c: "#1C1E26" }, { x: 120, y: 44, w: 86, h: 52, c: "#ECEDF2" },
                        { x: 216, y: 44, w: 86, h: 52, c: "#ECEDF2" }, { x: 318, y: 16, w: 92, h: 10, c: "#7C6CFF" },
                        { x: 318, y: 44, w: 92, h: 52, c: "#E2F2EC" }
                    ]
                    delegate: Rectangle {
                        required property var modelData

                        x: modelData.x
                        y: modelData.y
                        width: modelData.w
                        height: modelData.h
                        radius: 3
                        color: modelData.c
                    }
                }
            }
        }
        Rectangle {
            y: 68
            width: parent.width
            height: 81
            gradient: Gradient {
                GradientStop { position: 0; color: Qt.rgba(Theme.overlay.r, Theme.overlay.g, Theme.overlay.b, 0) }
                GradientStop { position: 1; color: Theme.overlay }
            }
        }
        Logo {
            x: 32
            y: 92
            size: 56
        }
        Column {
            id: body

            x: 32
            y: 164
            width: parent.width - 64
            bottomPadding: 28
            Label {
                id: heading

                width: parent.width
                text: qsTr("Record it once. The edit is made for you.")
                type: Theme.displayType
                font.pixelSize: Math.round(26 * Theme.textScale)
                lineHeight: 32
                wrapMode: Text.Wrap
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Gap {}
            Label {
                width: parent.width
                wrapMode: Text.Wrap
                color: Theme.textSecondary
                text: qsTr("Zento watches where you click and type, then cuts the waiting, zooms to the action and adds captions. Everything stays on this computer.")
            }
            Gap { size: 12 }
            PermissionStep {
                iconName: "screen"
                text: qsTr("Screen")
                detail: qsTr("To record what is shown.")
                granted: App.permissions.screen
            }
            PermissionStep {
                iconName: "keyboard"
                text: qsTr("Clicks and keys")
                detail: App.permissions.needsInput ? qsTr("The edit is made from them.")
                    : qsTr("Without them, zooms follow the pointer. To allow them: %1, then log in again.").arg(sheet.inputCommand)
                optional: !App.permissions.needsInput
                granted: App.permissions.input
                askable: App.permissions.needsInput
                onAsked: App.permissions.requestInputPermission()
            }
            PermissionStep {
                iconName: "accessibility"
                text: qsTr("Accessibility")
                detail: App.permissions.needsInput ? qsTr("To know what was clicked.")
                    : qsTr("Optional, to know what was clicked.")
                granted: App.permissions.accessibility
                askable: true
                onAsked: App.permissions.requestAccessibilityPermission()
            }
            PermissionStep {
                iconName: "mic"
                text: qsTr("Microphone")
                detail: qsTr("Optional, for narration and captions.")
                granted: App.permissions.microphone
                askable: true
                onAsked: App.permissions.requestMicrophonePermission()
            }
            Gap { size: 20 }
            Item {
                width: parent.width
                height: 32
                Caption {
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("You can change these later in Record.")
                }
                Row {
                    anchors.right: parent.right
                    spacing: 8
                    Button {
                        id: look

                        kind: Button.Quiet
                        overlay: true
                        text: qsTr("Look around")
                        onClicked: sheet.close()
                    }
                    Button {
                        id: record

                        kind: Button.Primary
                        enabled: sheet.ready
                        iconName: "record"
                        iconColor: "#FF5D52"
                        text: qsTr("Record screen")
                        onClicked: {
                            sheet.close()
                            sheet.recordRequested()
                        }
                    }
                }
            }
        }
    }
}
