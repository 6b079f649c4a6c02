#include "ZentoEngine/Chapters.h"

#include <algorithm>

namespace zento::EditPlanner {

namespace {

// Output seconds.
constexpr double kLead = 0.4;
constexpr double kSpacing = 3.2;

} // namespace

std::vector<ChapterMarker>
chapterMarkers(std::span<const SemanticNotes::Chapter> chapters, const RemapCurve& remap)
{
    std::vector<ChapterMarker> markers;
    for (const SemanticNotes::Chapter& chapter : chapters) {
        if (!remap.contains(chapter.sourceTime)) {
            continue;
        }
        const double t = std::max(remap.outputTime(chapter.sourceTime) - kLead, 0.0);
        if (markers.empty() || !(t - markers.back().tOut < kSpacing)) {
            markers.push_back({t, chapter.title});
        }
    }
    return markers;
}

} // namespace zento::EditPlanner
