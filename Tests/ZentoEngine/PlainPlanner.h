#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/EditPlanner.h"
#include "ZentoEngine/Moment.h"
#include "ZentoEngine/SpeechRanges.h"

#include <span>
#include <vector>

/// The planner's rules by plain search, as one would explain them: what the fast passes must equal.
namespace zento::test::plain {

std::vector<EditPlanner::Moment> detectMoments(const EditPlanner::PlanInput& input);

std::vector<EditPlanner::Moment>
applyZoomEdits(std::vector<EditPlanner::Moment> moments, const EditPlanner::PlanInput& input);

std::vector<SpeedSegment> buildTimeRemap(
    std::span<const EditPlanner::Moment> moments,
    const EditPlanner::PlanInput& input,
    std::span<const EditPlanner::TimeRange> speech);

std::vector<SpeedSegment>
subtract(std::vector<SpeedSegment> segments, std::span<const Overrides::SourceRange> removed);

std::vector<CursorSample>
smoothCursor(std::span<const EditPlanner::Moment> moments, const EditPlanner::PlanInput& input);

std::vector<KeystrokeChip>
keystrokeChips(const EditPlanner::PlanInput& input, const RemapCurve& remap);

} // namespace zento::test::plain
