#include "ZentoEngine/EventLog.h"

namespace zento::EditPlanner {

EventLog::EventLog(std::span<const InputEvent> events)
{
    moves.reserve(events.size());
    for (const InputEvent& event : events) {
        switch (event.kind) {
        case EventKind::Click:
            clicks.push_back(&event);
            break;
        case EventKind::KeyDown:
            keys.push_back(&event);
            break;
        case EventKind::Scroll:
            scrolls.push_back(&event);
            break;
        case EventKind::Move:
            moves.push_back({event.t, event.pos});
            break;
        case EventKind::MouseUp:
        case EventKind::DragStart:
        case EventKind::DragEnd:
            break;
        }
    }
}

} // namespace zento::EditPlanner
