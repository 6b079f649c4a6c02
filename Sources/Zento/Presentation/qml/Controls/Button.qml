import QtQuick
import QtQuick.Templates as T
import Zento

T.Button {
    id: control

    enum Kind { Normal, Primary, Quiet, Danger }
    enum Size { Small, Medium, Large }

    property int kind: Button.Normal
    property int size: Button.Medium
    property string iconName
    property color iconColor: label.color
    property bool overlay: false // stands on a sheet or another raised surface
    property string tip

    readonly property bool filled: kind !== Button.Quiet
    readonly property color restColor: kind === Button.Primary ? Theme.primary
        : kind === Button.Danger ? Theme.recordFill
        : kind === Button.Quiet ? "transparent"
        : overlay ? Theme.controlOnOverlay : Theme.control
    readonly property color hoverColor: kind === Button.Primary ? Theme.primaryHover
        : kind === Button.Danger ? Qt.lighter(Theme.recordFill, 1.12)
        : overlay && kind === Button.Quiet ? Theme.controlOnOverlay
        : kind === Button.Quiet ? Theme.control : Theme.controlHover
    readonly property color pressColor: kind === Button.Primary ? Theme.primaryPressed
        : kind === Button.Danger ? Qt.darker(Theme.recordFill, 1.12) : Theme.controlPressed
    readonly property color inkColor: kind === Button.Primary ? Theme.inkOnPrimary
        : kind === Button.Danger ? Theme.inkOnRecordFill
        : kind === Button.Quiet && !hovered ? Theme.textSecondary : Theme.text
    readonly property real corner: size === Button.Small ? 7 : size === Button.Large ? 10 : Theme.radiusControl

    implicitHeight: size === Button.Small ? Theme.sizeControlSmall
        : size === Button.Large ? Theme.sizeControlLarge : Theme.sizeControl
    implicitWidth: Math.ceil(label.implicitWidth) + (iconName.length > 0 && text.length > 0 ? 22 : iconName.length > 0 ? 16 : 0)
        + leftPadding + rightPadding
    leftPadding: size === Button.Small ? 10 : size === Button.Large ? 16 : 12
    rightPadding: leftPadding
    opacity: enabled ? 1 : Theme.opacityDisabled
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.onPressAction: if (control.enabled) control.clicked()
    Accessible.description: tip
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    background: Rectangle {
        radius: control.corner
        color: control.down ? control.pressColor : control.hovered ? control.hoverColor : control.restColor
        Behavior on color { ColorAnimation { duration: Theme.durationInstant } }
        FocusRing {
            visible: control.visualFocus
            targetRadius: control.corner
        }
    }
    contentItem: Item {
        Row {
            id: row

            anchors.centerIn: parent
            anchors.horizontalCenterOffset: control.iconName.length > 0 ? -1 : 0
            spacing: 8
            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: control.iconName.length > 0
                name: control.iconName
                size: Theme.sizeIconSmall
                color: control.iconColor
            }
            Label {
                id: label

                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, Math.max(0, control.width - 12 - (control.iconName.length > 0 ? 24 : 0)))
                visible: text.length > 0
                text: control.text
                type: control.size === Button.Small ? Theme.labelType : Theme.bodyType
                weight: control.kind === Button.Primary || control.kind === Button.Danger ? 600 : 500
                color: control.inkColor
                Accessible.ignored: true
            }
        }
    }
    Tip {
        text: control.tip
        shown: control.tip.length > 0 && (control.hovered || control.visualFocus)
    }
}
