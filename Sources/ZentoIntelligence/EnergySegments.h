#pragma once

#include "ZentoCore/Analyses.h"

#include <span>
#include <vector>

namespace zento {

/// Where a sound is loud, as stretches of narration without text: blocks of 50 ms above the
/// geometric mean of the noise floor and the loud level, pauses of half a second between them,
/// longer than 0.3 s. `offset` is added to all times.
std::vector<TranscriptSegment>
energySegments(std::span<const float> sound, double sampleRate, double offset);

} // namespace zento
