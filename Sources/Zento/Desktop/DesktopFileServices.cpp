#include "Zento/Desktop/DesktopFileServices.h"

#include "Zento/Model/FilePath.h"
#include "ZentoCore/FileDescriptor.h"

#include <QClipboard>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>
#include <QVariantMap>

#include <fcntl.h>

#include <memory>
#include <utility>

namespace zento {

namespace {

constexpr auto kFileManager = "org.freedesktop.FileManager1";
constexpr auto kPortal = "org.freedesktop.portal.Desktop";
constexpr auto kPortalPath = "/org/freedesktop/portal/desktop";

QUrl urlOf(const std::filesystem::path& file)
{
    return QUrl::fromLocalFile(textOf(file));
}

/// The file opened for a portal, which is given the descriptor and not the path.
QDBusUnixFileDescriptor opened(const std::filesystem::path& file)
{
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    return QDBusUnixFileDescriptor(descriptor.get()); // keeps a copy of its own
}

QDBusMessage portalCall(const char* interface, const char* method)
{
    return QDBusMessage::createMethodCall(kPortal, kPortalPath, interface, method);
}

} // namespace

DesktopFileServices::DesktopFileServices(QDBusConnection bus)
    : m_bus(std::move(bus))
{
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
}

void DesktopFileServices::reveal(const std::filesystem::path& file)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        kFileManager, "/org/freedesktop/FileManager1", kFileManager, "ShowItems");
    call << QStringList(urlOf(file).toString(QUrl::FullyEncoded)) << QString();
    auto* const watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, file] {
        if (watcher->isError()) { // no such file manager: any that opens folders will do
            QDesktopServices::openUrl(urlOf(file.parent_path()));
        }
        watcher->deleteLater();
    });
}

void DesktopFileServices::copyToClipboard(const std::filesystem::path& file)
{
    auto data = std::make_unique<QMimeData>();
    data->setUrls({urlOf(file)});
    // Some file managers paste only what says that it shall be copied.
    data->setData(
        "x-special/gnome-copied-files", "copy\n" + urlOf(file).toEncoded(QUrl::FullyEncoded));
    QGuiApplication::clipboard()->setMimeData(data.release());
}

void DesktopFileServices::openUrl(const std::string& url)
{
    QDesktopServices::openUrl(QUrl(QString::fromStdString(url)));
}

void DesktopFileServices::openWith(
    const std::filesystem::path& file, std::function<void(std::string)> failed)
{
    QDBusMessage call = portalCall("org.freedesktop.portal.OpenURI", "OpenFile");
    call << QString() << QVariant::fromValue(opened(file)) << QVariantMap{{"ask", true}};
    callPortal(call, std::move(failed));
}

void DesktopFileServices::composeMail(
    const std::filesystem::path& file,
    const std::string& subject,
    std::function<void(std::string)> failed)
{
    QDBusMessage call = portalCall("org.freedesktop.portal.Email", "ComposeEmail");
    const QList<QDBusUnixFileDescriptor> attachments{opened(file)};
    call << QString()
         << QVariantMap{
                {"subject", QString::fromStdString(subject)},
                {"attachment_fds", QVariant::fromValue(attachments)}};
    callPortal(call, std::move(failed));
}

void DesktopFileServices::callPortal(
    const QDBusMessage& call, std::function<void(std::string)> failed)
{
    auto* const watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(
        watcher, &QDBusPendingCallWatcher::finished, this, [watcher, failed = std::move(failed)] {
            if (watcher->isError()) {
                failed(watcher->error().message().toStdString());
            }
            watcher->deleteLater();
        });
}

} // namespace zento
