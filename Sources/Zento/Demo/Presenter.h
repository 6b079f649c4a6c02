#pragma once

#include "ZentoCore/Analyses.h"

#include <filesystem>
#include <span>
#include <stop_token>

namespace zento {

/// Writes the movie a camera would have taken of somebody who presents: a photograph, swaying a
/// little all the time and nodding while something is said. 30 frames a second.
///
/// Throws `Error`, kDemoStopped on a stop request.
void writePresenter(
    const std::filesystem::path& movie,
    double seconds,
    std::span<const TranscriptSegment> speech,
    const std::stop_token& stop);

} // namespace zento
