#include "ZentoEngine/PointerAttention.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace zento::EditPlanner {

namespace {

// Shares of the recording's width.
constexpr double kStillness = 0.002; // what a hand on the mouse does without a purpose
constexpr double kRestRadius = 0.02; // a rest's movements
constexpr double kJourney = 0.05;    // from one rest to another

// Seconds of source time.
constexpr double kLongRest = 0.9;
constexpr double kShortRest = 0.4; // with a change of the picture
constexpr double kAnswer = 1.0;    // within which the picture changes after an arrival
constexpr double kDwellLength = 0.4;
constexpr double kBusyWindow = 0.8;
constexpr std::size_t kBusyChanges = 3; // in that window
constexpr double kActivityGap = 0.5;

double distance(Vec2 a, Vec2 b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

struct Rest {
    double start = 0;
    double end = 0;
    Vec2 pos;  // where it came to
    Vec2 last; // and where it went on from
};

/// The stretches in which the pointer stays near the place it came to.
std::vector<Rest> restsOf(std::span<const PointerMove> moves, double width)
{
    std::vector<Rest> rests;
    for (const PointerMove& move : moves) {
        if (!rests.empty() && distance(rests.back().pos, move.pos) <= kRestRadius * width) {
            rests.back().end = move.t;
            rests.back().last = move.pos;
        } else {
            rests.push_back({move.t, move.t, move.pos, move.pos});
        }
    }
    std::erase_if(rests, [](const Rest& rest) { return rest.end - rest.start < kShortRest; });
    return rests;
}

bool changesWithin(std::span<const double> changes, double start, double end)
{
    const auto first = std::ranges::lower_bound(changes, start);
    return first != changes.end() && *first <= end;
}

Moment momentAt(Moment::Kind kind, double start, double end, Vec2 pos)
{
    Moment moment;
    moment.kind = kind;
    moment.start = start;
    moment.end = end;
    moment.pos = pos;
    return moment;
}

std::vector<Moment>
dwellsOf(Vec2 from, std::span<const Rest> rests, std::span<const double> changes, double width)
{
    std::vector<Moment> dwells;
    for (const Rest& rest : rests) {
        const bool isJourney = distance(from, rest.last) >= kJourney * width;
        const double length = rest.end - rest.start;
        const bool isAnswered = changesWithin(changes, rest.start, rest.start + kAnswer);
        if (length < kLongRest && !isAnswered) {
            continue; // a hand that slows down before it arrives goes on with the same journey
        }
        from = rest.last;
        if (isJourney) {
            dwells.push_back(
                momentAt(Moment::Kind::Dwell, rest.start, rest.start + kDwellLength, rest.last));
        }
    }
    return dwells;
}

/// The times at which the pointer is on its way.
std::vector<double> movingTimes(std::span<const PointerMove> moves, double width)
{
    std::vector<double> times;
    const PointerMove* from = nullptr;
    for (const PointerMove& move : moves) {
        if (from == nullptr) {
            from = &move;
        } else if (distance(from->pos, move.pos) > kStillness * width) {
            times.push_back(move.t);
            from = &move;
        }
    }
    return times;
}

/// The changes that are some of many.
std::vector<double> busyTimes(std::span<const double> changes)
{
    std::vector<double> times;
    for (std::size_t i = 0; i + kBusyChanges <= changes.size(); ++i) {
        const auto some = changes.subspan(i, kBusyChanges);
        if (some.back() - some.front() <= kBusyWindow) {
            times.insert(times.end(), some.begin(), some.end());
        }
    }
    return times;
}

std::vector<Moment> activityOf(std::vector<double> times)
{
    std::ranges::sort(times);
    std::vector<Moment> stretches;
    for (const double t : times) {
        if (!stretches.empty() && t - stretches.back().end <= kActivityGap) {
            stretches.back().end = t;
        } else {
            stretches.push_back(momentAt(Moment::Kind::Activity, t, t, {}));
        }
    }
    return stretches;
}

} // namespace

PointerAttention pointerAttention(
    std::span<const PointerMove> moves,
    std::span<const double> pictureChanges,
    const SessionMeta& meta)
{
    const double width = meta.pixelWidth;
    std::vector<double> times = movingTimes(moves, width);
    const std::vector<double> busy = busyTimes(pictureChanges);
    times.insert(times.end(), busy.begin(), busy.end());
    return {
        .dwells = moves.empty()
                      ? std::vector<Moment>()
                      : dwellsOf(moves.front().pos, restsOf(moves, width), pictureChanges, width),
        .activity = activityOf(std::move(times))};
}

} // namespace zento::EditPlanner
