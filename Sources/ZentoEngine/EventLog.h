#pragma once

#include "ZentoCore/InputEvent.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zento::EditPlanner {

/// Some events of a log, in recording order. The log's owner keeps them alive.
using EventList = std::vector<const InputEvent*>;

struct PointerMove {
    double t = 0; // source time
    Vec2 pos;
};

/// A log split by kind, each list in recording order; kinds that no pass asks for are left out.
///
/// Made in one walk: nearly all of a log are pointer moves, and walking over an hour's records
/// again for every pass took longer than the passes themselves.
struct EventLog {
    explicit EventLog(std::span<const InputEvent> events);

    EventList clicks;
    EventList keys;
    EventList scrolls;
    std::vector<PointerMove> moves;
};

/// Calls `visit(std::span<const InputEvent* const>)` for each run, never empty: a new run begins at
/// an event more than `largestGap` seconds after the one before it in the list.
template <typename Visit>
void forEachRun(const EventList& events, double largestGap, Visit visit)
{
    std::size_t begin = 0;
    for (std::size_t i = 1; i <= events.size(); ++i) {
        if (i == events.size() || events[i]->t - events[i - 1]->t > largestGap) {
            visit(std::span(events).subspan(begin, i - begin));
            begin = i;
        }
    }
}

} // namespace zento::EditPlanner
