#pragma once

#include <QImage>
#include <QObject>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringList>

#include <memory>

namespace zento {

/// Chooses a platform without a display and a renderer without a graphics card; before the
/// application object is made.
void useOffscreenPlatform();

/// A window with some QML of the module in it, on a model held still (FakeApp.qml). Everything Qt
/// complains of while it lives is kept.
///
/// Threading: the main thread; one at a time.
class Stage {
public:
    Stage();
    ~Stage();

    QQmlEngine& engine() { return *m_engine; }
    QObject* app() { return m_app.get(); }
    QObject* part(const char* name); // of the model
    /// The editor of a recording joins the model (FakeEditor.qml); before anything is shown.
    QObject* openEditor();
    QQuickWindow& window() { return m_window; }

    /// Shows a component's item alone, in a window of that size; `fill` makes it as large.
    QQuickItem* show(QQmlComponent& component, QSize size, bool fill);
    /// The same of a document: what stands behind "import Zento".
    QQuickItem* show(const QByteArray& qml, QSize size);
    void clear();

    /// Turns the event loop until every picture that is asked for is there.
    void settle();
    QImage grab();

    const QStringList& complaints() const;

private:
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QObject> m_app;
    std::unique_ptr<QObject> m_settings;
    std::unique_ptr<QObject> m_editor;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_item;
};

/// Every item below one, popups' contents included where they lie in the same window.
QList<QQuickItem*> itemsBelow(QQuickItem* item);

} // namespace zento
