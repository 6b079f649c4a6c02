#include "ZentoEngine/ZoomEdits.h"

#include "ZentoEngine/NearestTime.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace zento::EditPlanner {

namespace {

constexpr double kAddedLength = 0.12; // seconds

void applyEdits(std::vector<Moment>& moments, std::span<const Overrides::ZoomEdit> edits)
{
    std::vector<double> starts;
    starts.reserve(moments.size());
    for (const Moment& moment : moments) {
        starts.push_back(moment.start);
    }
    NearestTime byStart(starts);
    for (const Overrides::ZoomEdit& edit : edits) {
        const auto match = byStart.find(edit.sourceTime);
        if (!match || match->distance > kZoomIdentityTolerance) {
            continue;
        }
        Moment& moment = moments[match->index];
        moment.editKey = moment.start;
        if (edit.newSourceTime) {
            byStart.move(match->index, moment.start, *edit.newSourceTime);
            moment.end = *edit.newSourceTime + (moment.end - moment.start);
            moment.start = *edit.newSourceTime;
        }
        moment.forcedZoom = edit.level;
        moment.hold = edit.hold;
    }
}

/// Where the pointer was. The log need not ascend: the largest `t` up to each move does, so the
/// first move at or after a time can be searched.
class PointerPlaces {
public:
    explicit PointerPlaces(std::span<const PointerMove> moves)
        : m_moves(moves)
    {
        m_latestUpTo.reserve(m_moves.size());
        for (const PointerMove& move : m_moves) {
            m_latestUpTo.push_back(
                m_latestUpTo.empty() ? move.t : std::max(m_latestUpTo.back(), move.t));
        }
    }

    /// The place of the first move at or after `time`, else of the last one before it; no
    /// interpolation. The origin without any move.
    Vec2 at(double time) const
    {
        if (m_moves.empty()) {
            return {};
        }
        const auto found = std::ranges::lower_bound(m_latestUpTo, time);
        const auto index = static_cast<std::size_t>(found - m_latestUpTo.begin());
        return m_moves[std::min(index, m_moves.size() - 1)].pos;
    }

private:
    std::span<const PointerMove> m_moves;
    std::vector<double> m_latestUpTo;
};

Moment addedMoment(const Overrides::AddedZoom& zoom, const PointerPlaces& pointer)
{
    Moment moment;
    moment.kind = Moment::Kind::Added;
    moment.start = zoom.sourceTime;
    moment.end = zoom.sourceTime + kAddedLength;
    moment.pos = pointer.at(zoom.sourceTime);
    moment.editKey = zoom.id;
    moment.forcedZoom = zoom.level;
    moment.hold = zoom.hold;
    return moment;
}

} // namespace

std::vector<Moment>
applyZoomEdits(std::vector<Moment> moments, const Overrides& overrides, const EventLog& events)
{
    if (!overrides.zoomEdits.empty()) {
        applyEdits(moments, overrides.zoomEdits);
    }
    const NearestTime deleted(overrides.deletedZoomSourceTimes);
    std::erase_if(moments, [&](const Moment& moment) {
        return moment.kind != Moment::Kind::Scroll
               && deleted.isWithin(kZoomIdentityTolerance, moment.key());
    });
    if (!overrides.addedZooms.empty()) {
        const PointerPlaces pointer(events.moves);
        for (const Overrides::AddedZoom& zoom : overrides.addedZooms) {
            moments.push_back(addedMoment(zoom, pointer));
        }
    }
    std::ranges::stable_sort(moments, {}, &Moment::start);
    return moments;
}

} // namespace zento::EditPlanner
