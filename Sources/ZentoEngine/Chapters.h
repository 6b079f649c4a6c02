#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/RemapCurve.h"

#include <span>
#include <vector>

namespace zento::EditPlanner {

/// The chapters that survive the cuts, in stored order, each 0.4 s before its place but not before
/// the film. One less than 3.2 s after the last one taken is left out.
std::vector<ChapterMarker>
chapterMarkers(std::span<const SemanticNotes::Chapter> chapters, const RemapCurve& remap);

} // namespace zento::EditPlanner
