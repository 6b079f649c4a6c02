#pragma once

#include "ZentoCore/EditPlan.h"

#include <vector>

namespace zento::EditPlanner {

/// How far the end of a stretch may be pulled to reach a beat, in output seconds, inclusive.
inline constexpr double kBeatTolerance = 0.22;

/// Retimes each stretch between two cuts by a few percent, so that its end falls on a beat of
/// `period` seconds counted from the film's start.
///
/// A stretch farther than `tolerance` from its nearest beat keeps its timing. The factor lies in
/// [0.9, 1.12]; where that is not enough the stretch misses the beat. A period of 0.2 s or less
/// changes nothing.
std::vector<SpeedSegment>
snapToBeats(std::vector<SpeedSegment> segments, double period, double tolerance);

} // namespace zento::EditPlanner
