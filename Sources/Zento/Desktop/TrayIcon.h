#pragma once

#include "Zento/Desktop/TrayMenu.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <vector>

namespace zento {

class TrayItem;

/// An icon in the desktop's tray with a menu, as a StatusNotifierItem. It shows as soon as there is
/// a tray, also one that comes later.
///
/// Threading: the main thread.
class TrayIcon : public QObject {
    Q_OBJECT

public:
    explicit TrayIcon(QDBusConnection bus = QDBusConnection::sessionBus());
    ~TrayIcon() override;

    void setIcon(const QString& themeName);
    void setToolTip(const QString& text);
    void setMenu(std::vector<TrayEntry> entries);

    /// Whether a tray shows it at the moment.
    bool isShown() const { return m_isShown; }

Q_SIGNALS:
    void activated(); // a click on the icon
    void isShownChanged();

private:
    void lookForTray();
    void setShown(bool isShown);

    QDBusConnection m_bus;
    TrayItem* m_item; // on the bus; owned
    TrayMenu* m_menu; // the same
    bool m_isShown = false;
};

} // namespace zento
