#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Overrides.h"

#include <span>
#include <vector>

namespace zento::EditPlanner {

/// The segments without the ranges the user removed and without slivers of 0.05 s or less. With no
/// removed ranges the segments come back as they are, slivers included. An empty or inverted range
/// removes nothing.
std::vector<SpeedSegment>
subtract(std::vector<SpeedSegment> segments, std::span<const Overrides::SourceRange> removed);

} // namespace zento::EditPlanner
