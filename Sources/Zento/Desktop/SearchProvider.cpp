#include "Zento/Desktop/SearchProvider.h"

#include "Zento/Desktop/Identity.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <utility>

namespace zento {

namespace {

constexpr auto kName = "dev.halvek.zento.SearchProvider";
constexpr auto kPath = "/dev/halvek/zento/SearchProvider";
constexpr std::chrono::minutes kIdleTime{1};

} // namespace

SearchProvider::SearchProvider(std::filesystem::path folder, QDBusConnection bus)
    : m_folder(std::move(folder))
    , m_bus(std::move(bus))
{
    qDBusRegisterMetaType<QList<QVariantMap>>();
    m_idleTimer.setSingleShot(true);
    connect(&m_idleTimer, &QTimer::timeout, this, &SearchProvider::idle);
}

bool SearchProvider::start()
{
    m_idleTimer.start(kIdleTime);
    return m_bus.registerObject(kPath, this, QDBusConnection::ExportAllSlots)
           && m_bus.registerService(kName);
}

/// Newest first.
std::vector<SearchEntry> SearchProvider::entries()
{
    m_idleTimer.start(kIdleTime);
    std::vector<SearchEntry> found;
    for (const SessionFolder& folder : sessionFolders(m_folder)) {
        if (const auto item = readSession(folder)) {
            found.push_back(searchEntry(*item));
        }
    }
    return found;
}

QStringList SearchProvider::GetInitialResultSet(const QStringList& terms)
{
    QStringList found;
    for (const SearchEntry& entry : entries()) {
        if (matches(entry, terms)) {
            found.append(entry.identifier);
        }
    }
    return found;
}

QStringList
SearchProvider::GetSubsearchResultSet(const QStringList& previous, const QStringList& terms)
{
    QStringList found = GetInitialResultSet(terms);
    found.removeIf([&](const QString& identifier) { return !previous.contains(identifier); });
    return found;
}

QList<QVariantMap> SearchProvider::GetResultMetas(const QStringList& identifiers)
{
    QList<QVariantMap> metas;
    for (const SearchEntry& entry : entries()) {
        if (identifiers.contains(entry.identifier)) {
            metas.append(
                {{"id", entry.identifier},
                 {"name", entry.title},
                 {"description", entry.description},
                 {"gicon", kApplicationId}});
        }
    }
    return metas;
}

void SearchProvider::ActivateResult(
    const QString& identifier, const QStringList& /*terms*/, uint /*timestamp*/)
{
    const QStringList uris(QUrl::fromLocalFile(identifier).toString(QUrl::FullyEncoded));
    call("Open", {uris, QVariantMap()});
}

void SearchProvider::LaunchSearch(const QStringList& /*terms*/, uint /*timestamp*/)
{
    call("Activate", {QVariantMap()});
}

/// The application, which the bus starts if it does not run.
void SearchProvider::call(const char* method, const QVariantList& arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        kApplicationId, kApplicationPath, "org.freedesktop.Application", method);
    message.setArguments(arguments);
    m_bus.asyncCall(message);
}

} // namespace zento
