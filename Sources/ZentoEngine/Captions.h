#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/RemapCurve.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zento::EditPlanner {

/// The transcript as captions that fit on the screen, sorted by `tOut`. A segment is shown whole or
/// not at all, by whether its middle survives; its lines share its time by their length.
std::vector<CaptionChip>
buildCaptions(std::span<const TranscriptSegment> transcript, const RemapCurve& remap);

/// `text` in lines of at most `limit` characters, broken at spaces. A text that fits comes back
/// unchanged; a longer word has a line of its own. Other white space does not separate words.
std::vector<std::string> splitCaption(std::string_view text, std::size_t limit);

} // namespace zento::EditPlanner
