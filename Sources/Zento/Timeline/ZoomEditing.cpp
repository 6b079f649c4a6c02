#include "Zento/Timeline/ZoomEditing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zento {

namespace {

constexpr double kShortestHold = 0.4; // seconds
constexpr double kAddedHold = 1.6;

using AddedZoom = Overrides::AddedZoom;
using ZoomEdit = Overrides::ZoomEdit;

std::vector<AddedZoom>::iterator added(SavedOverrides& edits, double id)
{
    return std::ranges::find(edits.addedZooms, id, &AddedZoom::id);
}

/// The edit of a planned zoom, made if there is none. They stay ascending, one a zoom.
ZoomEdit& entry(SavedOverrides& edits, double id)
{
    const auto place = std::ranges::lower_bound(edits.zoomEdits, id, {}, &ZoomEdit::sourceTime);
    if (place != edits.zoomEdits.end() && place->sourceTime == id) {
        return *place;
    }
    return *edits.zoomEdits.insert(place, ZoomEdit{.sourceTime = id});
}

void insert(std::vector<double>& times, double time)
{
    const auto place = std::ranges::lower_bound(times, time);
    if (place == times.end() || *place != time) {
        times.insert(place, time);
    }
}

/// Changes the added zoom of that id, or else the edit of the planned one.
template <typename Added, typename Planned>
EditStep change(SavedOverrides edits, double id, Added changeAdded, Planned changePlanned)
{
    if (const auto zoom = added(edits, id); zoom != edits.addedZooms.end()) {
        changeAdded(*zoom);
        return {std::move(edits), EditName::kZoom};
    }
    changePlanned(entry(edits, id));
    return {std::move(edits), EditName::kZoomEdit};
}

} // namespace

EditStep toggleZoom(SavedOverrides edits, double id)
{
    if (std::erase(edits.disabledZooms, id) == 0) {
        insert(edits.disabledZooms, id);
    }
    return {std::move(edits), EditName::kZoom};
}

EditStep moveZoom(SavedOverrides edits, double id, double toSource)
{
    const double target = std::max(toSource, 0.0);
    return change(
        std::move(edits),
        id,
        [&](AddedZoom& zoom) { zoom.sourceTime = target; },
        [&](ZoomEdit& edit) { edit.newSourceTime = target; });
}

EditStep resizeZoom(SavedOverrides edits, double id, double hold)
{
    const double kept = std::max(hold, kShortestHold);
    return change(
        std::move(edits),
        id,
        [&](AddedZoom& zoom) { zoom.hold = kept; },
        [&](ZoomEdit& edit) { edit.hold = kept; });
}

EditStep setZoomLevel(SavedOverrides edits, double id, double level)
{
    return change(
        std::move(edits),
        id,
        [&](AddedZoom& zoom) { zoom.level = level; },
        [&](ZoomEdit& edit) { edit.level = level; });
}

EditStep addZoom(SavedOverrides edits, double atSource, double level)
{
    double id = atSource;
    while (isAddedZoom(edits, id)) {
        id = std::nextafter(id, std::numeric_limits<double>::infinity());
    }
    edits.addedZooms.push_back(
        {.id = id, .sourceTime = atSource, .hold = kAddedHold, .level = level});
    return {std::move(edits), EditName::kZoom};
}

EditStep deleteZoom(SavedOverrides edits, double id)
{
    if (const auto zoom = added(edits, id); zoom != edits.addedZooms.end()) {
        edits.addedZooms.erase(zoom);
        return {std::move(edits), EditName::kZoom};
    }
    std::erase_if(edits.zoomEdits, [&](const ZoomEdit& edit) { return edit.sourceTime == id; });
    std::erase(edits.disabledZooms, id);
    insert(edits.deletedZooms, id);
    return {std::move(edits), EditName::kDeleteZoom};
}

EditStep resetZoom(SavedOverrides edits, double id)
{
    if (const auto zoom = added(edits, id); zoom != edits.addedZooms.end()) {
        edits.addedZooms.erase(zoom);
        return {std::move(edits), EditName::kZoom};
    }
    std::erase_if(edits.zoomEdits, [&](const ZoomEdit& edit) { return edit.sourceTime == id; });
    return {std::move(edits), EditName::kZoomEdit};
}

EditStep restoreDeletedZooms(SavedOverrides edits)
{
    edits.deletedZooms.clear();
    return {std::move(edits), EditName::kDeleteZoom};
}

bool isAddedZoom(const SavedOverrides& edits, double id)
{
    return std::ranges::find(edits.addedZooms, id, &AddedZoom::id) != edits.addedZooms.end();
}

} // namespace zento
