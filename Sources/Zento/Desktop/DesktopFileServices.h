#pragma once

#include "Zento/Model/FileServices.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QObject>

namespace zento {

/// Files by the services of the session bus: the file manager, the portals, the clipboard. Needs a
/// QGuiApplication for the clipboard and for opening addresses.
class DesktopFileServices final : public QObject, public FileServices {
    Q_OBJECT

public:
    explicit DesktopFileServices(QDBusConnection bus = QDBusConnection::sessionBus());

    void reveal(const std::filesystem::path& file) override;
    void copyToClipboard(const std::filesystem::path& file) override;
    void openUrl(const std::string& url) override;
    void
    openWith(const std::filesystem::path& file, std::function<void(std::string)> failed) override;
    void composeMail(
        const std::filesystem::path& file,
        const std::string& subject,
        std::function<void(std::string)> failed) override;

private:
    void callPortal(const QDBusMessage& call, std::function<void(std::string)> failed);

    QDBusConnection m_bus;
};

} // namespace zento
