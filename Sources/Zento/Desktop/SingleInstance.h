#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace zento {

/// One application a session: the first owns the name on the session bus, a later one raises it.
/// The first answers to org.freedesktop.Application, as launchers and the search provider call it.
///
/// Without a session bus every start is the first.
///
/// Threading: the main thread.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    enum class Standing : unsigned char { First, Second };

    explicit SingleInstance(QDBusConnection bus = QDBusConnection::sessionBus());
    ~SingleInstance() override;

    /// Takes the name, or raises the one who has it: with a recording's bundle path, it opens that.
    /// Blocks until the other has answered, at most five seconds.
    Standing claim(const QString& bundle = {});

    /// Gives the name back, for another start.
    void release();

    /// Has the application that runs do an action, by its id. False when none runs.
    static bool tell(const QString& action, QDBusConnection bus = QDBusConnection::sessionBus());

Q_SIGNALS:
    /// The window shall come to the front.
    void activated();
    /// A recording shall be opened: its bundle's path.
    void openRequested(const QString& bundle);
    /// An action by its id, as `AppModel::run` knows them.
    void actionRequested(const QString& action);

private:
    QDBusConnection m_bus;
    QObject* m_object = nullptr; // what is on the bus; owned
};

} // namespace zento
