#include "ZentoEngine/EventRuns.h"

namespace zento::EditPlanner {

EventList eventsOfKind(std::span<const InputEvent> events, EventKind kind)
{
    EventList result;
    for (const InputEvent& event : events) {
        if (event.kind == kind) {
            result.push_back(&event);
        }
    }
    return result;
}

} // namespace zento::EditPlanner
