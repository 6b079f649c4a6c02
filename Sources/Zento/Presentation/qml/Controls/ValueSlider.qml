import QtQuick
import QtQuick.Templates as T
import Zento

// A number with its name, its value, which takes typing, and a track. `value` is in the setting's
// own unit; it is shown times `factor`, in `unit`. A double click goes back to `standard`.
Item {
    id: root

    property string label
    property real value: 0
    property real standard: NaN
    property alias from: slider.from
    property alias to: slider.to
    property alias step: slider.stepSize
    property real factor: 1
    property int decimals: 0
    property int leastDecimals: 0 // 1: "2.0" and not "2"
    property string unit
    property string spokenUnit: unit
    readonly property alias pressed: slider.pressed
    readonly property bool touched: slider.pressed || slider.visualFocus
    readonly property real standardPosition: (standard - from) / (to - from)

    signal edited(real value)

    function shown(number) {
        const rounded = Number((number * factor).toFixed(decimals))
        let digits = leastDecimals
        while (digits < decimals && Number(rounded.toFixed(digits)) !== rounded)
            ++digits
        return (rounded === 0 ? 0 : rounded).toLocaleString(Qt.locale(), "f", digits).replace("-", "\u2212")
    }
    function set(number) {
        const steps = Math.round((number - from) / step)
        const next = Math.min(to, Math.max(from, Number((from + steps * step).toFixed(6))))
        if (next !== value)
            edited(next)
    }
    function read(text) {
        const plain = text.replace("\u2212", "-").replace(unit, "").trim()
        let number = NaN
        try {
            number = Number.fromLocaleString(Qt.locale(), plain)
        } catch (error) {
            number = Number(plain.replace(",", "."))
        }
        if (!isNaN(number))
            set(number / factor)
        typing.text = Qt.binding(() => root.shown(root.value) + " " + root.unit)
    }

    implicitWidth: 264
    implicitHeight: Theme.sizeSliderRow
    opacity: enabled ? 1 : Theme.opacityDisabled

    Label {
        anchors.left: parent.left
        anchors.right: typing.left
        y: 4
        text: root.label
        Accessible.ignored: true
    }
    T.TextField {
        id: typing

        anchors.right: parent.right
        anchors.rightMargin: -6
        y: 4
        height: 20
        width: Math.ceil(implicitWidth)
        implicitWidth: contentWidth + leftPadding + rightPadding
        leftPadding: 6
        rightPadding: 6
        topPadding: 2
        bottomPadding: 2
        activeFocusOnTab: false
        selectByMouse: true
        text: root.shown(root.value) + " " + root.unit
        font.family: Theme.uiFamily
        font.pixelSize: Theme.labelType.size
        font.weight: 500
        font.styleName: Appearance.styleName(Theme.uiFamily, 500)
        horizontalAlignment: Text.AlignRight
        color: root.touched || activeFocus ? Theme.accent : Theme.textSecondary
        selectionColor: Theme.accentFill
        selectedTextColor: Theme.inkOnAccentFill
        Accessible.name: root.label
        onActiveFocusChanged: if (activeFocus) selectAll(); else root.read(text)
        Keys.onReturnPressed: slider.forceActiveFocus()
        Keys.onEscapePressed: { text = root.shown(root.value); slider.forceActiveFocus() }
        background: Rectangle {
            radius: 5
            color: root.touched || typing.activeFocus ? Theme.accentSoft
                : typing.hovered ? Theme.control : "transparent"
        }
    }
    T.Slider {
        id: slider

        anchors.left: parent.left
        anchors.right: parent.right
        y: 24
        height: 20
        value: root.value
        snapMode: T.Slider.SnapAlways
        focusPolicy: Qt.StrongFocus
        Accessible.name: root.label
        Accessible.description: root.shown(root.value) + " " + root.spokenUnit
        onMoved: root.set(value)
        TapHandler {
            onDoubleTapped: if (!isNaN(root.standard)) root.set(root.standard)
        }
        background: Item {
            Rectangle {
                y: 8
                width: parent.width
                height: Theme.sizeSliderTrack
                radius: 2
                color: Theme.controlPressed
            }
            Rectangle {
                y: 8
                width: handle.x + handle.width / 2
                height: Theme.sizeSliderTrack
                radius: 2
                color: root.touched ? Theme.accent : Theme.sliderFill
            }
            Rectangle {
                visible: !isNaN(root.standard) && Math.abs(root.standard - root.value) > root.step / 2
                x: Math.round(8 + root.standardPosition * (parent.width - 16) - 1)
                y: 6
                width: 2
                height: 8
                radius: 1
                color: Theme.controlBorder
            }
        }
        handle: Item {
            id: handle

            x: slider.visualPosition * (slider.width - width)
            y: 2
            width: Theme.sizeSliderThumb
            height: Theme.sizeSliderThumb
            Rectangle {
                anchors.centerIn: parent
                visible: slider.hovered || root.touched
                width: parent.width + (root.touched ? 10 : 8)
                height: width
                radius: width / 2
                color: root.touched ? Theme.accent : Theme.text
                opacity: root.touched ? 0.28 : 0.12
            }
            Rectangle {
                anchors.fill: parent
                anchors.margins: -1
                anchors.topMargin: 0
                anchors.bottomMargin: -2
                radius: height / 2
                color: "black"
                opacity: Theme.dark ? 0.3 : 0.22
            }
            Rectangle {
                anchors.fill: parent
                radius: width / 2
                color: Theme.thumb
            }
            FocusRing {
                visible: slider.visualFocus
                targetRadius: 8
            }
        }
    }
}
