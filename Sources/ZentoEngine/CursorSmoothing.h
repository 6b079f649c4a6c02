#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/InputEvent.h"
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
std::vector<CursorSample> smoothCursor(
    std::span<const InputEvent> events, std::span<const Moment> moments, const PlanConfig& config);

} // namespace zento::EditPlanner
