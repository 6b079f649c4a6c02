#pragma once

#include <QObject>

#include <memory>

class QQmlEngine;
class QQuickWindow;

namespace zento {

class AppModel;

/// The program's windows on a model: the main one and the floating panels.
///
/// Threading: the main thread. Errors: QML that does not load throws `Error`.
class Windows : public QObject {
    Q_OBJECT

public:
    /// `app` outlives the windows.
    explicit Windows(AppModel* app);
    ~Windows() override;

    QQuickWindow* mainWindow() const;
    QQmlEngine& engine() const { return *m_engine; } // for further windows

private:
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QObject> m_root;
};

} // namespace zento
