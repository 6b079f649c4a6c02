import QtQuick
import QtQuick.Templates as T
import Zento

T.Menu {
    id: menu

    property Item opener // what had the keys

    implicitWidth: Math.max(200, list.contentWidth + 8)
    implicitHeight: list.contentHeight + 8
    padding: 4
    margins: 8
    focus: true
    onAboutToShow: opener = parent?.Window.activeFocusItem ?? null
    // The keys go back to where they were, through all the scopes around it, unless what was chosen
    // has taken them.
    onClosed: {
        const now = parent?.Window.activeFocusItem ?? null
        let around = opener
        while (around && around !== now)
            around = around.parent
        if (opener && (now === null || around))
            opener.forceActiveFocus(Qt.PopupFocusReason)
        opener = null
    }
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
