#include "Zento/Model/UpdateCheck.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QPointer>

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>

namespace zento {

namespace {

constexpr std::chrono::seconds kCheckInterval{604800}; // a week
constexpr auto kLastCheckKey = "lastUpdateCheck";      // seconds since 1970

bool isDigit(char character)
{
    return std::isdigit(static_cast<unsigned char>(character)) != 0;
}

/// Takes a run of digits off the front, without the zeros before it.
std::string_view takeNumber(std::string_view& text)
{
    const std::size_t length =
        static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
    std::string_view number = text.substr(0, length);
    text.remove_prefix(length);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

struct VersionInfo {
    QString version;
    QUrl url;
};

std::optional<VersionInfo> decodeVersionInfo(const QByteArray& document)
{
    const QJsonObject object = QJsonDocument::fromJson(document).object();
    const QJsonValue version = object["version"];
    const QJsonValue url = object["url"];
    if (!version.isString() || !url.isString()) {
        return std::nullopt;
    }
    return VersionInfo{version.toString(), QUrl(url.toString(), QUrl::StrictMode)};
}

std::int64_t seconds(Clock::Instant instant)
{
    return std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count();
}

} // namespace

bool isNewerVersion(std::string_view version, std::string_view than)
{
    while (!version.empty() && !than.empty()) {
        if (isDigit(version.front()) && isDigit(than.front())) {
            const std::string_view left = takeNumber(version);
            const std::string_view right = takeNumber(than);
            if (left != right) {
                return std::pair(left.size(), left) > std::pair(right.size(), right);
            }
        } else {
            if (version.front() != than.front()) {
                return version.front() > than.front();
            }
            version.remove_prefix(1);
            than.remove_prefix(1);
        }
    }
    return !version.empty();
}

UpdateCheck::UpdateCheck(Ports ports)
    : m_ports(std::move(ports))
{
}

void UpdateCheck::checkIfDue()
{
    if (!m_ports.settings.current().autoCheckUpdates) {
        return;
    }
    const std::int64_t last = m_ports.defaults.value(kLastCheckKey, 0).toLongLong();
    if (seconds(m_ports.clock.now()) - last > kCheckInterval.count()) {
        run(Voice::Silent);
    }
}

void UpdateCheck::check()
{
    run(Voice::Telling);
}

void UpdateCheck::run(Voice voice)
{
    if (m_isChecking) {
        return;
    }
    const auto now = static_cast<qlonglong>(seconds(m_ports.clock.now()));
    m_ports.defaults.setValue(kLastCheckKey, now);
    if (m_ports.endpoint.document.scheme() != "https") {
        fail(voice);
        return;
    }
    m_isChecking = true;
    Q_EMIT isCheckingChanged();
    m_ports.fetch(
        m_ports.endpoint.document,
        [self = QPointer(this), voice](const std::optional<QByteArray>& document) {
            if (self) {
                self->m_isChecking = false;
                Q_EMIT self->isCheckingChanged();
                self->finish(document, voice);
            }
        });
}

void UpdateCheck::finish(const std::optional<QByteArray>& document, Voice voice)
{
    const auto remote = document ? decodeVersionInfo(*document) : std::nullopt;
    if (!remote) {
        fail(voice);
        return;
    }
    const QString running = m_ports.runningVersion;
    if (!isNewerVersion(remote->version.toStdString(), running.toStdString())) {
        if (voice == Voice::Telling) {
            m_ports.messages.setToast(tr("Zento %1 is up to date").arg(running));
        }
        return;
    }
    const bool isWeb = remote->url.scheme() == "https" || remote->url.scheme() == "http";
    if (!remote->url.isValid() || !isWeb || remote->url.host() != m_ports.endpoint.site) {
        fail(voice); // nobody is ever sent elsewhere
        return;
    }
    m_ports.question.ask({
        .text = tr("Zento %1 is available").arg(remote->version),
        .detail = tr("You have %1. The download is a package from %2.")
                      .arg(running, m_ports.endpoint.site),
        .acceptText = tr("Download"),
        .rejectText = tr("Later"),
        .onAccept =
            [this, url = remote->url] {
                m_ports.files.openUrl(url.toString(QUrl::FullyEncoded).toStdString());
            },
    });
}

void UpdateCheck::fail(Voice voice)
{
    if (voice == Voice::Telling) {
        m_ports.messages.setToast(tr("Update check failed — try again later"));
    }
}

} // namespace zento
