#include "Zento/Desktop/TrayIcon.h"

#include "Zento/Desktop/TrayItem.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

#include <utility>

namespace zento {

namespace {

constexpr auto kWatcher = "org.kde.StatusNotifierWatcher";
constexpr auto kWatcherPath = "/StatusNotifierWatcher";
constexpr auto kItemPath = "/StatusNotifierItem";

} // namespace

TrayIcon::TrayIcon(QDBusConnection bus)
    : m_bus(std::move(bus))
    , m_item(new TrayItem(this))
    , m_menu(new TrayMenu(this))
{
    connect(m_item, &TrayItem::activated, this, &TrayIcon::activated);
    if (!m_bus.isConnected()) {
        return;
    }
    const auto everything = QDBusConnection::ExportAllContents;
    m_bus.registerObject(kItemPath, m_item, everything);
    m_bus.registerObject(TrayItem::kMenuPath, m_menu, everything);
    auto* const watcher =
        new QDBusServiceWatcher(kWatcher, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { lookForTray(); });
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { setShown(false); });
    lookForTray();
}

TrayIcon::~TrayIcon()
{
    m_bus.unregisterObject(kItemPath);
    m_bus.unregisterObject(TrayItem::kMenuPath);
}

/// Without an answer there is no tray; the watcher tells when one comes.
void TrayIcon::lookForTray()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        kWatcher, kWatcherPath, kWatcher, "RegisterStatusNotifierItem");
    call << m_bus.baseService();
    auto* const watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        setShown(!watcher->isError());
        watcher->deleteLater();
    });
}

void TrayIcon::setShown(bool isShown)
{
    if (m_isShown != isShown) {
        m_isShown = isShown;
        Q_EMIT isShownChanged();
    }
}

void TrayIcon::setIcon(const QString& themeName)
{
    m_item->setIconName(themeName);
}

void TrayIcon::setToolTip(const QString& text)
{
    m_item->setTitle(text);
}

void TrayIcon::setMenu(std::vector<TrayEntry> entries)
{
    m_menu->setEntries(std::move(entries));
}

} // namespace zento
