#pragma once

#include "ZentoCore/InputEvent.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zento::EditPlanner {

/// Some events of a log, in recording order. The log's owner keeps them alive.
using EventList = std::vector<const InputEvent*>;

/// The events of one kind.
EventList eventsOfKind(std::span<const InputEvent> events, EventKind kind);

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
