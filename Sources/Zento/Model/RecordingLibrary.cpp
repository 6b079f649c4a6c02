#include "Zento/Model/RecordingLibrary.h"

#include "Zento/Model/FilePath.h"
#include "Zento/Model/SessionNames.h"
#include "ZentoCore/Text.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

namespace zento {

namespace {

/// So many bundles are read in one go: about 5 ms from a warm disk.
constexpr std::size_t kPartSize = 64;

constexpr auto kSelectedKey = "selectedSession";

QString textOf(const std::optional<std::string>& text)
{
    return QString::fromStdString(text.value_or(""));
}

} // namespace

/// A listing under way: the folders are known, the first of them are read.
struct RecordingLibrary::Listing {
    std::vector<SessionFolder> folders;
    std::size_t readCount = 0;
    std::vector<SessionItem> items;
};

RecordingLibrary::RecordingLibrary(Ports ports)
    : m_ports(std::move(ports))
{
}

const SessionItem* RecordingLibrary::item(const QString& path) const
{
    const auto found =
        std::ranges::find(m_items, path, [](const SessionItem& item) { return textOf(item.url); });
    return found == m_items.end() ? nullptr : &*found;
}

const SessionItem* RecordingLibrary::selectedSession() const
{
    return m_selected.isEmpty() ? nullptr : item(m_selected);
}

QVariantMap RecordingLibrary::selectedItem() const
{
    const SessionItem* const selected = selectedSession();
    QVariantMap map;
    if (selected == nullptr) {
        return map;
    }
    for (const auto& [role, name] : roleNames().asKeyValueRange()) {
        map.insert(QString::fromLatin1(name), value(*selected, role));
    }
    return map;
}

int RecordingLibrary::selectedRow() const
{
    const auto found = std::ranges::find(
        m_rows, m_selected, [](const SessionItem& item) { return textOf(item.url); });
    return found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin());
}

int RecordingLibrary::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QHash<int, QByteArray> RecordingLibrary::roleNames() const
{
    return {
        {PathRole, "path"},
        {NameRole, "name"},
        {TitleRole, "title"},
        {DateRole, "date"},
        {SectionRole, "section"},
        {DurationRole, "duration"},
        {AppNameRole, "appName"},
        {HasRenderRole, "hasRender"},
        {FilmRole, "film"},
        {IsSelectedRole, "isSelected"}};
}

QVariant RecordingLibrary::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    return value(m_rows[static_cast<std::size_t>(index.row())], role);
}

QVariant RecordingLibrary::value(const SessionItem& item, int role) const
{
    switch (role) {
    case PathRole:
        return textOf(item.url);
    case NameRole:
    case Qt::DisplayRole:
        return nameOf(item);
    case TitleRole:
        return textOf(item.title);
    case DateRole:
        return dateTimeOf(item);
    case SectionRole: {
        const auto now = std::chrono::floor<std::chrono::seconds>(m_ports.clock.now());
        const QDateTime today = QDateTime::fromSecsSinceEpoch(now.time_since_epoch().count());
        return sectionOf(item, today.date());
    }
    case DurationRole:
        return item.duration;
    case AppNameRole:
        return textOf(item.appName);
    case HasRenderRole:
        return item.hasRender;
    case FilmRole:
        return textOf(filmOf(item.url));
    case IsSelectedRole:
        return textOf(item.url) == m_selected;
    default:
        return {};
    }
}

void RecordingLibrary::setSearch(const QString& text)
{
    if (m_search != text) {
        m_search = text;
        Q_EMIT searchChanged();
        showItems();
    }
}

void RecordingLibrary::setRenaming(const QString& path)
{
    if (m_renaming != path) {
        m_renaming = path;
        Q_EMIT renamingChanged();
    }
}

bool RecordingLibrary::matches(const SessionItem& item) const
{
    const QString text = m_search.trimmed();
    const auto occurs = [&](const QString& where) {
        return where.contains(text, Qt::CaseInsensitive);
    };
    return text.isEmpty() || occurs(nameOf(item)) || occurs(textOf(item.appName))
           || occurs(QLocale().toString(dateTimeOf(item), QLocale::LongFormat));
}

void RecordingLibrary::refresh(std::function<void()> done)
{
    auto& waiting = m_listing ? m_onNext : m_onListed;
    if (done) {
        waiting.push_back(std::move(done));
    }
    if (m_listing) {
        m_isStale = true; // what is being read may be older than this wish
    } else {
        startListing();
    }
}

void RecordingLibrary::startListing()
{
    m_listing = std::make_shared<Listing>();
    compute(
        m_ports.worker,
        this,
        [folder = m_ports.folder] { return sessionFolders(folder); },
        [this](Outcome<std::vector<SessionFolder>> folders) {
            m_listing->folders = std::move(folders).value_or(std::vector<SessionFolder>{});
            readNext(m_listing);
        });
}

/// Part after part, so that the first listing shows at once and other work comes between.
void RecordingLibrary::readNext(const std::shared_ptr<Listing>& listing)
{
    if (m_isLoading && !listing->items.empty()) {
        m_items = listing->items;
        showItems();
    }
    if (listing->readCount == listing->folders.size()) {
        finishListing();
        return;
    }
    compute(
        m_ports.worker,
        this,
        [listing] {
            const std::size_t end =
                std::min(listing->folders.size(), listing->readCount + kPartSize);
            std::vector<SessionItem> part;
            for (std::size_t i = listing->readCount; i < end; ++i) {
                if (auto item = readSession(listing->folders[i])) {
                    part.push_back(*std::move(item));
                }
            }
            return std::pair(end, std::move(part));
        },
        [this, listing](const Outcome<std::pair<std::size_t, std::vector<SessionItem>>>& read) {
            if (!read) {
                finishListing(); // no memory: what is there is shown
                return;
            }
            listing->readCount = read->first;
            std::ranges::copy(read->second, std::back_inserter(listing->items));
            readNext(listing);
        });
}

void RecordingLibrary::finishListing()
{
    m_items = std::move(m_listing->items);
    m_listing.reset();
    if (std::exchange(m_isLoading, false)) {
        Q_EMIT isLoadingChanged();
    }
    showItems();
    restoreSelection();
    Q_EMIT refreshed();
    for (const auto& done : std::exchange(m_onListed, {})) {
        done();
    }
    m_onListed = std::exchange(m_onNext, {});
    if (std::exchange(m_isStale, false)) {
        startListing();
    }
}

/// Brings the rows to what the items and the search give, row by row, so that a view keeps its
/// place.
void RecordingLibrary::showItems()
{
    std::vector<SessionItem> rows;
    std::ranges::copy_if(m_items, std::back_inserter(rows), [this](const SessionItem& item) {
        return matches(item);
    });
    removeMissingRows(rows);
    insertMissingRows(rows);
    if (!std::ranges::equal(m_rows, rows, {}, &SessionItem::url, &SessionItem::url)) {
        beginResetModel(); // the order has changed
        m_rows = std::move(rows);
        endResetModel();
    } else {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (m_rows[i] != rows[i]) {
                m_rows[i] = std::move(rows[i]);
                Q_EMIT dataChanged(index(static_cast<int>(i)), index(static_cast<int>(i)));
            }
        }
    }
    Q_EMIT countChanged();
    Q_EMIT selectedItemChanged();
}

void RecordingLibrary::removeMissingRows(const std::vector<SessionItem>& rows)
{
    std::unordered_set<std::string> kept;
    for (const SessionItem& item : rows) {
        kept.insert(item.url.native());
    }
    for (std::size_t i = m_rows.size(); i-- > 0;) {
        if (!kept.contains(m_rows[i].url.native())) {
            beginRemoveRows({}, static_cast<int>(i), static_cast<int>(i));
            m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(i));
            endRemoveRows();
        }
    }
}

void RecordingLibrary::insertMissingRows(const std::vector<SessionItem>& rows)
{
    std::unordered_set<std::string> present;
    for (const SessionItem& item : m_rows) {
        present.insert(item.url.native());
    }
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t last = first;
        while (last < rows.size() && !present.contains(rows[last].url.native())) {
            ++last;
        }
        const auto at = [](auto& list, std::size_t i) {
            return list.begin() + static_cast<std::ptrdiff_t>(i);
        };
        if (last > first && first <= m_rows.size()) {
            beginInsertRows({}, static_cast<int>(first), static_cast<int>(last) - 1);
            m_rows.insert(at(m_rows, first), at(rows, first), at(rows, last));
            endInsertRows();
        }
        first = last + 1;
    }
}

/// The remembered recording, else the newest, where none is selected or the selected one is gone.
void RecordingLibrary::restoreSelection()
{
    if (selectedSession() != nullptr) {
        return;
    }
    const QString remembered = m_ports.defaults.value(kSelectedKey).toString();
    if (item(remembered) != nullptr) {
        setSelected(remembered);
    } else {
        setSelected(m_items.empty() ? QString() : textOf(m_items.front().url));
    }
}

void RecordingLibrary::select(const QString& path)
{
    if (path.isEmpty() || item(path) != nullptr) {
        setSelected(path);
    }
}

void RecordingLibrary::selectNewest()
{
    if (!m_items.empty()) {
        setSelected(textOf(m_items.front().url));
    }
}

void RecordingLibrary::setSelected(const QString& path)
{
    if (m_selected == path) {
        return;
    }
    const QString before = std::exchange(m_selected, path);
    m_ports.defaults.setValue(kSelectedKey, path);
    emitRows(before);
    emitRows(path);
    Q_EMIT selectedChanged();
    Q_EMIT selectedItemChanged();
}

/// Whether the row of a recording is the selected one has changed.
void RecordingLibrary::emitRows(const QString& path)
{
    const auto found =
        std::ranges::find(m_rows, path, [](const SessionItem& item) { return textOf(item.url); });
    if (found != m_rows.end()) {
        const QModelIndex row = index(static_cast<int>(found - m_rows.begin()));
        Q_EMIT dataChanged(row, row, {IsSelectedRole});
    }
}

void RecordingLibrary::rename(const QString& path, const QString& text)
{
    setRenaming({});
    if (item(path) == nullptr) {
        return;
    }
    compute(
        m_ports.worker,
        this,
        [bundle = pathOf(path), title = text.toStdString()] { storeTitle(bundle, title); },
        [this](const Outcome<void>& stored) {
            if (stored) {
                refresh();
            }
        });
}

void RecordingLibrary::moveToTrash(const QString& path)
{
    const SessionItem* const session = item(path);
    if (session == nullptr) {
        return;
    }
    m_ports.question.ask({
        .text = tr("Move “%1” to the Trash?").arg(nameOf(*session)),
        .detail = session->hasRender
                      ? tr("The recording and its exported video go to the Trash together.")
                      : tr("The recording goes to the Trash; you can put it back from there."),
        .acceptText = tr("Move to Trash"),
        .rejectText = tr("Cancel"),
        .isDestructive = true,
        .onAccept = [this, session = *session] { putIntoTrash(session); },
    });
}

void RecordingLibrary::putIntoTrash(const SessionItem& item)
{
    std::vector<std::filesystem::path> files{item.url};
    if (item.hasRender) {
        files.push_back(filmOf(item.url));
    }
    // What went before one that fails is in the trash all the same, and can be put back.
    const auto entries = std::make_shared<std::vector<Trash::Entry>>();
    compute(
        m_ports.worker,
        this,
        [entries, files, trash = m_ports.trash] {
            for (const std::filesystem::path& file : files) {
                entries->push_back(trash(file));
            }
        },
        [this, entries, path = textOf(item.url)](const Outcome<void>& outcome) {
            if (!outcome) {
                m_ports.messages.setErrorMessage(tr("Not everything went to the Trash: %1.")
                                                     .arg(QString::fromStdString(outcome.error())));
            }
            trashed(path, std::move(*entries));
        });
}

void RecordingLibrary::trashed(const QString& path, std::vector<Trash::Entry> entries)
{
    if (entries.empty()) {
        return;
    }
    m_lastTrashed = std::move(entries);
    if (m_selected == path) {
        setSelected({});
    }
    refresh();
    m_ports.messages.setToast(tr("Moved to the Trash"), tr("Undo"), [this] { undoTrash(); });
}

void RecordingLibrary::undoTrash()
{
    if (m_lastTrashed.empty()) {
        return;
    }
    const auto entries = std::exchange(m_lastTrashed, {});
    compute(
        m_ports.worker,
        this,
        [entries] {
            for (const Trash::Entry& entry : entries) {
                Trash::restore(entry);
            }
        },
        [this, path = textOf(entries.front().original)](const Outcome<void>& restored) {
            if (!restored) {
                m_ports.messages.setErrorMessage(
                    tr("Not everything came back from the Trash: %1.")
                        .arg(QString::fromStdString(restored.error())));
            }
            refresh([this, path] { select(path); });
        });
}

void RecordingLibrary::revealSession(const QString& path)
{
    if (item(path) != nullptr) {
        m_ports.files.reveal(pathOf(path));
    }
}

void RecordingLibrary::revealRender()
{
    if (const SessionItem* const selected = selectedSession(); selected && selected->hasRender) {
        m_ports.files.reveal(filmOf(selected->url));
    }
}

void RecordingLibrary::copyRenderToClipboard()
{
    if (const SessionItem* const selected = selectedSession(); selected && selected->hasRender) {
        m_ports.files.copyToClipboard(filmOf(selected->url));
        m_ports.messages.setToast(tr("Video copied to clipboard"));
    }
}

void RecordingLibrary::openFolder()
{
    m_ports.files.reveal(m_ports.folder);
}

bool RecordingLibrary::openFromSearch(const QString& identifier)
{
    if (item(identifier) == nullptr) {
        return false;
    }
    select(identifier);
    return true;
}

} // namespace zento
