#include "Zento/Desktop/Notifications.h"

#include "Zento/Desktop/Identity.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>

#include <utility>

namespace zento {

namespace {

constexpr auto kService = "org.freedesktop.Notifications";
constexpr auto kPath = "/org/freedesktop/Notifications";
constexpr auto kDefaultAction = "default"; // a click on the bubble itself

} // namespace

Notifications::Notifications(QDBusConnection bus)
    : m_bus(std::move(bus))
{
    m_bus.connect(kService, kPath, kService, "ActionInvoked", this, SLOT(onAction(uint, QString)));
}

void Notifications::show(const QString& title, const QString& text)
{
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kService, "Notify");
    const QVariantMap hints{{"desktop-entry", kApplicationId}};
    call << "Zento" << m_shown << kApplicationId << title << text.toHtmlEscaped()
         << QStringList{kDefaultAction, tr("Show Zento")} << hints << -1;
    auto* const watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<uint> reply = *watcher;
        m_shown = reply.isError() ? 0 : reply.value();
        watcher->deleteLater();
    });
}

void Notifications::onAction(uint id, const QString& action)
{
    if (id == m_shown && action == kDefaultAction) {
        Q_EMIT activated();
    }
}

} // namespace zento
