#include "Zento/Desktop/TrayMenu.h"

#include <QDBusMetaType>

#include <utility>

namespace zento {

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(qMetaTypeId<QDBusVariant>());
    for (const MenuLayout& child : layout.children) {
        argument << QDBusVariant(QVariant::fromValue(child));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout)
{
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children.append(qdbus_cast<MenuLayout>(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event)
{
    argument.beginStructure();
    argument << event.id << event.name << event.data << event.time;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event)
{
    argument.beginStructure();
    argument >> event.id >> event.name >> event.data >> event.time;
    argument.endStructure();
    return argument;
}

TrayMenu::TrayMenu(QObject* parent)
    : QObject(parent)
{
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<MenuProperties>();
    qDBusRegisterMetaType<QList<MenuProperties>>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<QList<int>>();
}

void TrayMenu::setEntries(std::vector<TrayEntry> entries)
{
    m_entries = std::move(entries);
    Q_EMIT LayoutUpdated(++m_revision, 0);
}

QVariantMap TrayMenu::properties(int id) const
{
    if (id == 0) {
        return {{"children-display", "submenu"}};
    }
    if (id < 1 || std::cmp_greater(id, m_entries.size())) {
        return {};
    }
    const TrayEntry& entry = m_entries[static_cast<std::size_t>(id) - 1];
    if (entry.text.isEmpty()) {
        return {{"type", "separator"}};
    }
    return {{"label", entry.text}, {"enabled", entry.isEnabled}};
}

// Everything is told whatever names are asked for: hosts pass over what they do not know.

uint TrayMenu::GetLayout(
    int parent, int depth, const QStringList& /*names*/, zento::MenuLayout& layout)
{
    layout = {parent, properties(parent), {}};
    for (int id = 1; parent == 0 && depth != 0 && std::cmp_less_equal(id, m_entries.size()); ++id) {
        layout.children.append({id, properties(id), {}});
    }
    return m_revision;
}

QList<zento::MenuProperties>
TrayMenu::GetGroupProperties(const QList<int>& ids, const QStringList& /*names*/)
{
    QList<MenuProperties> items;
    for (const int id : ids) {
        items.append({id, properties(id)});
    }
    return items;
}

QDBusVariant TrayMenu::GetProperty(int id, const QString& name)
{
    return QDBusVariant(properties(id).value(name, QString()));
}

void TrayMenu::Event(int id, const QString& name, const QDBusVariant& /*data*/, uint /*time*/)
{
    if (name != "clicked" || id < 1 || std::cmp_greater(id, m_entries.size())) {
        return;
    }
    const TrayEntry entry = m_entries[static_cast<std::size_t>(id) - 1]; // it may change the menu
    if (entry.isEnabled && entry.act) {
        entry.act();
    }
}

QList<int> TrayMenu::EventGroup(const QList<zento::MenuEvent>& events)
{
    for (const MenuEvent& event : events) {
        Event(event.id, event.name, event.data, event.time);
    }
    return {};
}

bool TrayMenu::AboutToShow(int /*id*/)
{
    return false; // it is up to date
}

QList<int> TrayMenu::AboutToShowGroup(const QList<int>& /*ids*/, QList<int>& /*errors*/)
{
    return {};
}

} // namespace zento
