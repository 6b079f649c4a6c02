import QtQuick
import QtQuick.Templates as T
import Zento

T.Menu {
    id: menu

    implicitWidth: Math.max(200, list.contentWidth + 8)
    implicitHeight: list.contentHeight + 8
    padding: 4
    margins: 8
    focus: true
    contentItem: ListView {
        id: list

        implicitWidth: contentWidth
        implicitHeight: contentHeight
        contentWidth: {
            let widest = 0
            for (let i = 0; i < menu.count; ++i)
                widest = Math.max(widest, menu.itemAt(i)?.implicitWidth ?? 0)
            return widest
        }
        model: menu.contentModel
        interactive: false
        currentIndex: menu.currentIndex
    }
    background: Panel {}
    delegate: MenuItem {}
}
