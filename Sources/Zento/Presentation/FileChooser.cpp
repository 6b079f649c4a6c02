#include "Zento/Presentation/FileChooser.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace zento {
namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");

} // namespace

void FileChooser::open(const QString& title)
{
    ask(QStringLiteral("OpenFile"), title, {});
}

void FileChooser::save(const QString& title, const QString& suggestion)
{
    const QFileInfo file(suggestion);
    ask(QStringLiteral("SaveFile"),
        title,
        {{QStringLiteral("current_name"), file.fileName()},
         {QStringLiteral("current_folder"), QFile::encodeName(file.path()) + '\0'}});
}

void FileChooser::ask(const QString& method, const QString& title, const QVariantMap& options)
{
    if (!m_request.isEmpty())
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService,
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.FileChooser"),
        method);
    call << QString() << title << options;
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *answer;
        if (reply.isError())
            Q_EMIT failed(tr("This desktop has no file dialog to choose from (%1).")
                              .arg(reply.error().message()));
        else
            listenTo(reply.value().path());
    });
}

void FileChooser::listenTo(const QString& request)
{
    m_request = request;
    QDBusConnection::sessionBus().connect(
        kService,
        request,
        kRequest,
        QStringLiteral("Response"),
        this,
        SLOT(answered(uint, QVariantMap)));
}

void FileChooser::answered(uint response, const QVariantMap& results)
{
    QDBusConnection::sessionBus().disconnect(
        kService,
        m_request,
        kRequest,
        QStringLiteral("Response"),
        this,
        SLOT(answered(uint, QVariantMap)));
    m_request.clear();
    const QStringList uris = results.value(QStringLiteral("uris")).toStringList();
    if (response == 0 && !uris.isEmpty())
        Q_EMIT chosen(QUrl(uris.front()).toLocalFile());
}

} // namespace zento
