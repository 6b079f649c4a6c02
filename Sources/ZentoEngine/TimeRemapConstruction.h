#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoEngine/Moment.h"
#include "ZentoEngine/PlanConfig.h"
#include "ZentoEngine/SpeechRanges.h"

#include <span>
#include <vector>

namespace zento::EditPlanner {

/// Decides which source time is kept and how fast it plays: idle gaps are cut, typing and scrolling
/// sped up, and both spare the protected speech. The result ascends and does not overlap. Without
/// moments the whole recording is kept as it is.
///
/// `moments` are those of `detectMoments`, sorted by start, before the user's edits; `duration` in
/// source seconds; `protectedSpeech` as `speechRanges` gives it.
///
/// Throws `Error` when the first moment lies so far past `duration` that nothing can be kept.
std::vector<SpeedSegment> buildTimeRemap(
    std::span<const Moment> moments,
    double duration,
    const PlanConfig& config,
    std::span<const TimeRange> protectedSpeech);

} // namespace zento::EditPlanner
