#pragma once

#include "Zento/Model/AppSettings.h"
#include "ZentoCore/Analyses.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoEngine/EditPlanner.h"

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// The user's edits of a bundle, or none: a file that is missing or does not decode counts as no
/// edits. Throws `Error` only for edits that contradict each other.
SavedOverrides loadSavedOverrides(const SessionBundle& bundle);

/// The bundle's "copy.json", or nothing where it is missing or does not decode. Blocks on a file.
std::optional<VideoCopy> loadVideoCopy(const SessionBundle& bundle);

/// What the analyses left in a bundle, and which tracks it has.
struct BundleAnalyses {
    std::vector<FramingHint> framingHints;
    std::vector<TranscriptSegment> transcript;
    std::optional<SemanticNotes> semantics;
    bool hasNarration = false;
    bool hasSystemAudio = false;
    bool hasWebcam = false;
    bool hasMusic = false;
    std::vector<double> pictureChanges; // of a recording with nothing but the pointer's way
    bool operator==(const BundleAnalyses&) const = default;
};

/// Analyses that are missing or do not decode are left out; none is run. A track exists when its
/// file does. Blocks on files.
BundleAnalyses loadAnalyses(const SessionBundle& bundle);

/// Everything the plan of a bundle is made from but its music. The result views `bundle.events`, so
/// the bundle must outlive it. Pure.
EditPlanner::PlanInput planInput(
    const SessionBundle& bundle,
    const BundleAnalyses& analyses,
    const AppSettings& settings,
    const SavedOverrides& edits,
    const std::optional<std::string>& desktopImage);

/// Everything the plan of a bundle is made from, gathered from its files and the settings.
///
/// Analyses that are missing or do not decode are left out; none is run. A track exists when its
/// file does. Music is not part of it: its beats are an analysis, see `analyzedMusic`. The result
/// views `bundle.events`, so the bundle must outlive it. Blocks on files.
EditPlanner::PlanInput gatherPlanInput(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const SavedOverrides& edits,
    const std::optional<std::string>& desktopImage);

/// The planner's plan of such an input, with the user's level of the music: what the setting
/// differs from its default is added to the planned level. Throws as the planner does.
EditPlan planAtLevels(const EditPlanner::PlanInput& input, const AppSettings& settings);

/// The bundle's music with its beats, used within the window of the edits. Nothing without a file.
///
/// Reads and analyses the whole of it. Throws `Error` for music that cannot be read, which a plan
/// then does without, and with the code `kCancelled` soon after `stop` is requested.
std::optional<EditPlanner::MusicInfo> analyzedMusic(
    const SessionBundle& bundle, const SavedOverrides& edits, const std::stop_token& stop = {});

} // namespace zento
