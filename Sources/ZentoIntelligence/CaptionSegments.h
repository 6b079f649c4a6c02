#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoIntelligence/SpeechEngine.h"

#include <span>
#include <vector>

namespace zento {

/// Words as segments that read like captions: a pause ends one, and so does a line's length. Each
/// begins with a capital. `offset` is added to all times.
std::vector<TranscriptSegment> captionSegments(std::span<const SpokenWord> words, double offset);

} // namespace zento
