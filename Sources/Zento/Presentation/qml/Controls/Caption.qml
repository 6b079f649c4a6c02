import QtQuick
import Zento

Label {
    type: Theme.captionType
    color: Theme.textTertiary
}
