#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <vector>

namespace zento {

/// One line of the tray's menu.
struct TrayEntry {
    QString text; // empty: a line between groups
    std::function<void()> act;
    bool isEnabled = true;
};

// Records of com.canonical.dbusmenu.

struct MenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<MenuLayout> children;
};
struct MenuProperties {
    int id = 0;
    QVariantMap properties;
};
struct MenuEvent {
    int id = 0;
    QString name;
    QDBusVariant data;
    uint time = 0;
};
QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

/// A flat menu on the bus, for the tray's host to show. Its items are numbered from 1.
///
/// Threading: the main thread.
class TrayMenu : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    explicit TrayMenu(QObject* parent);

    void setEntries(std::vector<TrayEntry> entries);

    static uint version() { return 3; }
    static QString textDirection() { return "ltr"; }
    static QString status() { return "normal"; }
    static QStringList iconThemePath() { return {}; }

public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers): a kind of its own
    // NOLINTBEGIN(readability-identifier-naming): the names on the bus
    uint GetLayout(int parent, int depth, const QStringList& names, zento::MenuLayout& layout);
    QList<zento::MenuProperties>
    GetGroupProperties(const QList<int>& ids, const QStringList& names);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& name, const QDBusVariant& data, uint time);
    QList<int> EventGroup(const QList<zento::MenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& errors);

Q_SIGNALS:
    void LayoutUpdated(uint revision, int parent);
    // NOLINTEND(readability-identifier-naming)

private:
    QVariantMap properties(int id) const;

    std::vector<TrayEntry> m_entries;
    uint m_revision = 1;
};

} // namespace zento

Q_DECLARE_METATYPE(zento::MenuLayout)
Q_DECLARE_METATYPE(zento::MenuProperties)
Q_DECLARE_METATYPE(zento::MenuEvent)
