import QtQuick
import QtQuick.Templates as T
import Zento

// A column that scrolls when it does not fit. What the keyboard reaches is brought into view.
Flickable {
    id: view

    default property alias content: column.data
    property real padding: 0
    readonly property Item focused: Window.activeFocusItem

    contentWidth: width
    contentHeight: column.implicitHeight + padding
    clip: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: ScrollBar {
        parent: view
        anchors.right: view.right
        anchors.rightMargin: -12
        height: view.height
    }
    onFocusedChanged: {
        let item = focused
        while (item && item !== column)
            item = item.parent
        if (!item || focused === view)
            return
        const top = focused.mapToItem(column, 0, 0).y
        if (top - 8 < contentY)
            contentY = Math.max(0, top - 8)
        else if (top + focused.height + 8 > contentY + height)
            contentY = Math.min(contentHeight - height, top + focused.height + 8 - height)
    }

    Column {
        id: column

        width: view.width
    }
}
