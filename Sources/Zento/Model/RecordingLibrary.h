#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/FileServices.h"
#include "Zento/Model/Messages.h"
#include "Zento/Model/Question.h"
#include "Zento/Model/SessionItem.h"
#include "Zento/Model/Trash.h"
#include "Zento/Model/Worker.h"

#include <QAbstractListModel>
#include <QSettings>
#include <QString>
#include <QVariantMap>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zento {

/// The recordings of the sessions folder, newest first, and what can be done to one as a whole.
///
/// The rows are those that match `search`. They are read in the background and come in parts; a
/// later `refresh` changes only the rows that are others on the disk.
///
/// Threading: the main thread.
class RecordingLibrary : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    /// The bundle's path of the selected recording; empty when none is.
    Q_PROPERTY(QString selected READ selected WRITE select NOTIFY selectedChanged)
    /// The selected recording with the roles below as keys; empty when none is.
    Q_PROPERTY(QVariantMap selectedItem READ selectedItem NOTIFY selectedItemChanged)
    /// The row of the selected recording, −1 when none is shown.
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedItemChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)           // rows shown
    Q_PROPERTY(int totalCount READ totalCount NOTIFY countChanged) // recordings there are
    /// The first listing is not done yet.
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    /// The bundle's path of the recording being renamed in the list; empty when none is.
    Q_PROPERTY(QString renaming READ renaming WRITE setRenaming NOTIFY renamingChanged)

public:
    enum Role {
        PathRole = Qt::UserRole + 1, // "path": the bundle's folder
        NameRole,                    // "name": what the list shows
        TitleRole,                   // "title": as the user gave it, may be empty
        DateRole,                    // "date": QDateTime, invalid if unknown
        SectionRole,                 // "section": "Today", "Yesterday", "Last week", …
        DurationRole,                // "duration": seconds
        AppNameRole,                 // "appName": may be empty
        HasRenderRole,               // "hasRender"
        FilmRole,                    // "film": the film's path, also where there is none
        IsSelectedRole,              // "isSelected"
    };

    struct Ports {
        std::filesystem::path folder; // of the sessions
        Clock& clock;
        Worker& worker;
        FileServices& files;
        Messages& messages;
        Question& question;
        QSettings& defaults; // "selectedSession"
        std::function<Trash::Entry(const std::filesystem::path&)> trash = Trash::put;
    };

    explicit RecordingLibrary(Ports ports);

    const std::vector<SessionItem>& items() const { return m_items; }
    const SessionItem* selectedSession() const;
    const SessionItem* item(const QString& path) const;
    const std::filesystem::path& folder() const { return m_ports.folder; }

    QString search() const { return m_search; }
    QString selected() const { return m_selected; }
    QVariantMap selectedItem() const;
    int selectedRow() const;
    int count() const { return static_cast<int>(m_rows.size()); }
    int totalCount() const { return static_cast<int>(m_items.size()); }
    bool isLoading() const { return m_isLoading; }
    QString renaming() const { return m_renaming; }

    void setSearch(const QString& text);
    void setRenaming(const QString& path);

    /// Lists the folder anew. `done` runs when the list is complete.
    void refresh(std::function<void()> done);
    Q_INVOKABLE void refresh() { refresh({}); }

    /// Empty selects nothing. A path that is not in the list changes nothing.
    Q_INVOKABLE void select(const QString& path);
    Q_INVOKABLE void selectNewest();

    /// Stores the title; a blank one takes it away. A failure changes nothing and stays silent.
    Q_INVOKABLE void rename(const QString& path, const QString& text);

    /// Asks, then moves the bundle and its film to the trash; the toast offers to undo it.
    Q_INVOKABLE void moveToTrash(const QString& path);
    Q_INVOKABLE void undoTrash();

    Q_INVOKABLE void revealSession(const QString& path); // the bundle's folder
    Q_INVOKABLE void revealRender();                     // of the selected recording
    Q_INVOKABLE void copyRenderToClipboard();
    Q_INVOKABLE void openFolder();

    /// From the desktop's search: selects a recording of the list by its bundle's path.
    /// True when there is one.
    bool openFromSearch(const QString& identifier);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void searchChanged();
    void selectedChanged();
    void selectedItemChanged();
    void countChanged();
    void isLoadingChanged();
    void renamingChanged();
    /// The list is complete and as the disk is.
    void refreshed();

private:
    struct Listing;

    Ports m_ports;
    std::vector<SessionItem> m_items;
    std::vector<SessionItem> m_rows; // the items shown
    QString m_search;
    QString m_selected;
    QString m_renaming;
    bool m_isLoading = true;
    std::shared_ptr<Listing> m_listing;            // under way
    bool m_isStale = false;                        // asked for again meanwhile
    std::vector<std::function<void()>> m_onListed; // of the listing under way
    std::vector<std::function<void()>> m_onNext;   // of the one after it
    std::vector<Trash::Entry> m_lastTrashed;

    QVariant value(const SessionItem& item, int role) const;
    bool matches(const SessionItem& item) const;
    void startListing();
    void readNext(const std::shared_ptr<Listing>& listing);
    void finishListing();
    void restoreSelection();
    void showItems();
    void insertMissingRows(const std::vector<SessionItem>& rows);
    void removeMissingRows(const std::vector<SessionItem>& rows);
    void setSelected(const QString& path);
    void emitRows(const QString& path);
    void putIntoTrash(const SessionItem& item);
    void trashed(const QString& path, std::vector<Trash::Entry> entries);
};

} // namespace zento
