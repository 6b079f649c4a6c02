import QtQml

// What the application is doing: the values of the model's `phase`.
QtObject {
    enum Value { Idle, CountingDown, Recording, Rendering, ExportingGif }
}
