import QtQml

// What floats or asks: the values of the model's `panel`.
QtObject {
    enum Value { NoPanel, CapturePanel, AreaPicker, WindowPicker }
}
