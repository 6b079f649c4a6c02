#include "Zento/Model/WindowList.h"

#include <algorithm>
#include <utility>

namespace zento {

namespace {

constexpr double kLeastWidth = 200; // points; a window must be wider
constexpr double kLeastHeight = 150;
constexpr int kThumbnailWidth = 320; // pixels

} // namespace

bool isPickable(const DesktopWindow& window)
{
    return window.isOrdinary && !window.isOurs && window.width > kLeastWidth
           && window.height > kLeastHeight;
}

WindowList::WindowList(Ports ports)
    : m_ports(std::move(ports))
{
}

void WindowList::refresh()
{
    m_isLoading = true;
    Q_EMIT countChanged();
    compute(
        m_ports.worker,
        this,
        m_ports.list,
        [this, generation = ++m_generation](Outcome<std::vector<DesktopWindow>> windows) {
            if (generation == m_generation) {
                publish(std::move(windows).value_or(std::vector<DesktopWindow>{}));
            }
        });
}

void WindowList::publish(std::vector<DesktopWindow> windows)
{
    std::erase_if(windows, [](const DesktopWindow& window) { return !isPickable(window); });
    beginResetModel();
    m_entries.clear();
    for (DesktopWindow& window : windows) {
        m_entries.push_back({std::move(window), {}});
    }
    m_isLoading = false;
    endResetModel();
    Q_EMIT countChanged();
    for (const Entry& entry : m_entries) {
        const std::uint32_t id = entry.window.id;
        compute(
            m_ports.worker,
            this,
            [picture = m_ports.thumbnail, id] { return picture(id, kThumbnailWidth); },
            [this, id, generation = m_generation](const Outcome<QImage>& image) {
                if (image) {
                    setThumbnail(generation, id, *image);
                }
            });
    }
}

void WindowList::setThumbnail(int generation, std::uint32_t windowID, const QImage& image)
{
    const auto found =
        std::ranges::find(m_entries, windowID, [](const Entry& entry) { return entry.window.id; });
    if (generation == m_generation && found != m_entries.end()) {
        found->thumbnail = image;
        const QModelIndex row = index(static_cast<int>(found - m_entries.begin()));
        Q_EMIT dataChanged(row, row, {ThumbnailRole});
    }
}

QImage WindowList::thumbnail(std::uint32_t windowID) const
{
    const auto found =
        std::ranges::find(m_entries, windowID, [](const Entry& entry) { return entry.window.id; });
    return found == m_entries.end() ? QImage() : found->thumbnail;
}

int WindowList::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant WindowList::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const auto& [window, thumbnail] = m_entries[static_cast<std::size_t>(index.row())];
    switch (role) {
    case WindowIdRole:
        return window.id;
    case ApplicationRole:
        return window.application;
    case Qt::DisplayRole:
    case WindowTitleRole:
        return window.title;
    case ThumbnailRole:
        return thumbnail;
    case AspectRole:
        return window.width / window.height;
    default:
        return {};
    }
}

QHash<int, QByteArray> WindowList::roleNames() const
{
    return {
        {WindowIdRole, "windowId"},
        {ApplicationRole, "application"},
        {WindowTitleRole, "title"},
        {ThumbnailRole, "thumbnail"},
        {AspectRole, "aspect"}};
}

} // namespace zento
