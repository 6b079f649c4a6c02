#pragma once

#include "ZentoCore/SessionBundle.h"
#include "ZentoEngine/EditPlanner.h"

namespace zento::bench {

/// A demonstration of `hours` hours, always the same one: per hour 432,000 pointer moves (120 a
/// second), 3,000 clicks, 20,000 keys and 5,000 scroll ticks, in bouts of work with pauses between.
SessionBundle humanSession(double hours);

/// Everything that can make a plan of it dear: narration, framing hints, keystroke chips, and
/// hundreds of edits an hour. `events` is a view of the bundle's.
EditPlanner::PlanInput richInput(const SessionBundle& session);

} // namespace zento::bench
