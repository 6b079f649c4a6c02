#pragma once

#include "ZentoCore/SessionMeta.h"
#include "ZentoEngine/EventLog.h"
#include "ZentoEngine/Moment.h"

#include <span>
#include <vector>

namespace zento::EditPlanner {

/// What the pointer's way and the picture tell of somebody whose clicks and keys nobody saw.
struct PointerAttention {
    /// Where the pointer came to rest and stayed: what the camera is to frame.
    std::vector<Moment> dwells;

    /// While the pointer moved or the picture went on changing: what is not idle.
    std::vector<Moment> activity;
};

/// Both sorted by start. `moves` in recording order; `pictureChanges`: source times, ascending.
///
/// A pointer dwells where it rests for nine tenths of a second after a journey; less than half of
/// that will do if the picture changes there and then, as it does at a click. A picture that
/// changes twice a second, as under a caret that blinks, counts as still.
PointerAttention pointerAttention(
    std::span<const PointerMove> moves,
    std::span<const double> pictureChanges,
    const SessionMeta& meta);

} // namespace zento::EditPlanner
