#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoEngine/EventLog.h"
#include "ZentoEngine/Moment.h"
#include "ZentoEngine/PlanConfig.h"

#include <span>
#include <vector>

namespace zento::EditPlanner {

/// The steadied pointer: one sample a move, in ascending time, each the mean of all moves within
/// 0.045 s. Over typing the shape is "iBeam", around clicks "pointingHand" (if the configuration
/// wants it), else "arrow".
///
/// `moments` are those of `detectMoments`, before the user's edits. The log need not ascend.
std::vector<CursorSample>
smoothCursor(const EventLog& events, std::span<const Moment> moments, const PlanConfig& config);

} // namespace zento::EditPlanner
