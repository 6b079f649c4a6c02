import QtQuick
import QtQuick.Templates as T
import Zento

// Text in one of the type styles of `Theme`. The fixed line height of a style is shared out above
// and below the letters, so that one line of a label stands in its middle.
T.Label {
    id: label

    property var type: Theme.bodyType
    property int weight: type.weight
    property string family: type.family
    readonly property real naturalHeight: type.size * (family === Theme.monoFamily ? 1.32 : 1.21)
    readonly property real lead: Math.round((type.line - naturalHeight) / 2)

    color: Theme.text
    font.family: family
    font.pixelSize: type.size
    font.weight: weight
    // Asked for by weight alone, a face of medium weight is made bolder by the text engine.
    font.styleName: Appearance.styleName(family, weight)
    font.letterSpacing: type.size >= 20 ? -0.015 * type.size : 0
    lineHeightMode: Text.FixedHeight
    lineHeight: type.line
    topPadding: lead
    bottomPadding: -lead
    verticalAlignment: Text.AlignTop
    elide: wrapMode === Text.NoWrap ? Text.ElideRight : Text.ElideNone
    textFormat: Text.PlainText
}
