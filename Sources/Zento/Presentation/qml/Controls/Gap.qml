import QtQuick

// Empty room in a column.
Item {
    property real size: 8

    width: size
    height: size
}
