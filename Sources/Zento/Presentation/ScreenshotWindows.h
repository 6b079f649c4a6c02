#pragma once

#include <QObject>

#include <memory>

class QQmlComponent;
class QQmlEngine;

namespace zento {

class ScreenshotEditor;

/// A window for every screenshot that is being edited.
///
/// Threading: the main thread. Errors: QML that does not load throws `Error`.
class ScreenshotWindows : public QObject {
    Q_OBJECT

public:
    /// On an engine that is prepared and outlives them; without one they make their own.
    explicit ScreenshotWindows(QQmlEngine* engine = nullptr);
    ~ScreenshotWindows() override;

    /// Shows the editor in front of everything else; the window that the user closes closes it.
    void open(ScreenshotEditor* editor);

Q_SIGNALS:
    void lastClosed();

private:
    QQmlEngine* m_engine;
    std::unique_ptr<QQmlEngine> m_own; // made for the first, if none was given
    std::unique_ptr<QQmlComponent> m_component;
    int m_openCount = 0;
};

} // namespace zento
