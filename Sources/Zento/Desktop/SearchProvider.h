#pragma once

#include "Zento/Desktop/SearchEntries.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>

#include <filesystem>
#include <vector>

namespace zento {

/// The recordings for the desktop's search (org.gnome.Shell.SearchProvider2), read from the folder
/// at every question, so that the answers are what is there. It asks to end after a minute without
/// a question.
///
/// Threading: the thread of a program that does nothing else: it blocks on the disk.
class SearchProvider : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Shell.SearchProvider2")

public:
    explicit SearchProvider(
        std::filesystem::path folder, QDBusConnection bus = QDBusConnection::sessionBus());

    /// Goes on the bus. False when another has the name, or there is no bus.
    bool start();

public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers): a kind of its own
    // NOLINTBEGIN(readability-identifier-naming): the names on the bus
    QStringList GetInitialResultSet(const QStringList& terms);
    QStringList GetSubsearchResultSet(const QStringList& previous, const QStringList& terms);
    QList<QVariantMap> GetResultMetas(const QStringList& identifiers);
    void ActivateResult(const QString& identifier, const QStringList& terms, uint timestamp);
    void LaunchSearch(const QStringList& terms, uint timestamp);
    // NOLINTEND(readability-identifier-naming)

Q_SIGNALS:
    void idle();

private:
    std::vector<SearchEntry> entries();
    void call(const char* method, const QVariantList& arguments);

    std::filesystem::path m_folder;
    QDBusConnection m_bus;
    QTimer m_idleTimer;
};

} // namespace zento
