#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

namespace zento {

/// Bubbles of the desktop's notification service. Without one, nothing happens.
///
/// Threading: the main thread. Nothing blocks.
class Notifications : public QObject {
    Q_OBJECT

public:
    explicit Notifications(QDBusConnection bus = QDBusConnection::sessionBus());

    /// Replaces the one before, if it is still there.
    void show(const QString& title, const QString& text);

Q_SIGNALS:
    /// The user clicked it.
    void activated();

private Q_SLOTS:
    void onAction(uint id, const QString& action);

private: // NOLINT(readability-redundant-access-specifiers): these are no slots
    QDBusConnection m_bus;
    uint m_shown = 0; // the service's number of the last one; 0: none
};

} // namespace zento
