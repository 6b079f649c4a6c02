#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/EventLog.h"

#include <vector>

namespace zento::EditPlanner {

/// What was typed, growing key by key: a chip for each key with a label that survives the cuts. A
/// pause of more than 0.6 s starts afresh. From 27 characters on a chip shows the last 25 behind an
/// ellipsis.
std::vector<KeystrokeChip> keystrokeChips(const EventLog& events, const RemapCurve& remap);

} // namespace zento::EditPlanner
