#pragma once

#include "Zento/Model/AppSettings.h"
#include "Zento/Model/PlanSources.h"
#include "Zento/Timeline/TimelineContents.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoEngine/MusicInfo.h"
#include "ZentoRender/PreviewFrames.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zento {

/// All that the film of a session is planned from, as one value.
struct FilmSources {
    std::shared_ptr<const SessionBundle> bundle;
    std::shared_ptr<const BundleAnalyses> analyses;
    std::optional<EditPlanner::MusicInfo> music; // its window is the edits'
    AppSettings settings;
    SavedOverrides edits;
    std::optional<std::string> desktopImage;
};

/// A film as the editor shows it. `film` is what will be exported, its trim applied; the timeline
/// shows the same plan without the trim, so that what was removed is still there to be pulled back.
/// Never changes.
struct PlannedFilm {
    std::shared_ptr<const PreviewFilm> film;
    double duration = 0; // seconds of the film's main part
    std::shared_ptr<const EditPlan> timelinePlan;
    std::shared_ptr<const RemapCurve> timelineCurve;
    double timelineDuration = 0; // seconds of the strip
    std::vector<ZoomBar> zoomBars;
    std::vector<CutMark> cuts;
    std::vector<double> beats; // strip times at which its music is heard to beat
    std::vector<TimelineWord> words;

    double toTimeline(double tOut) const;
    double fromTimeline(double stripTime) const; // [0, duration]
};

/// The film's shape at 720 lines.
OutputSpec previewOutput(const AppSettings& settings);

/// Plans the film twice where it is trimmed, the second time on a thread of its own that is waited
/// for. Throws `Error` as the planner does. Threading: any.
PlannedFilm planFilm(const FilmSources& sources);

} // namespace zento
