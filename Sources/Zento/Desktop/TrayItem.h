#pragma once

#include "Zento/Desktop/Identity.h"

#include <QDBusObjectPath>
#include <QObject>
#include <QString>

namespace zento {

/// The bus object of a `TrayIcon`: org.kde.StatusNotifierItem. Icons go by name: ours are in the
/// icon theme.
class TrayItem : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QString OverlayIconName READ none)
    Q_PROPERTY(QString AttentionIconName READ none)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    static constexpr auto kMenuPath = "/StatusNotifierMenu";

    using QObject::QObject;

    void setTitle(const QString& title)
    {
        if (m_title != title) {
            m_title = title;
            Q_EMIT NewTitle();
        }
    }

    void setIconName(const QString& themeName)
    {
        if (m_iconName != themeName) {
            m_iconName = themeName;
            Q_EMIT NewIcon();
        }
    }

    static QString category() { return "ApplicationStatus"; }
    static QString id() { return kApplicationId; }
    QString title() const { return m_title; }
    static QString status() { return "Active"; }
    static int windowId() { return 0; }
    QString iconName() const { return m_iconName; }
    static QString none() { return {}; }
    static bool itemIsMenu() { return false; }
    static QDBusObjectPath menu() { return QDBusObjectPath(kMenuPath); }

public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers): a kind of its own
    // NOLINTBEGIN(readability-identifier-naming): the names on the bus
    void Activate(int /*x*/, int /*y*/) { Q_EMIT activated(); }
    void SecondaryActivate(int /*x*/, int /*y*/) { Q_EMIT activated(); }
    void ContextMenu(int /*x*/, int /*y*/) {} // the host shows the menu itself
    void Scroll(int /*delta*/, const QString& /*orientation*/) {}

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewStatus(const QString& status);
    // NOLINTEND(readability-identifier-naming)
    void activated();

private:
    QString m_title = "Zento";
    QString m_iconName = kApplicationId;
};

} // namespace zento
