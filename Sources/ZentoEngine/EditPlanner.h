#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/InputEvent.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/SessionMeta.h"
#include "ZentoEngine/MusicInfo.h"
#include "ZentoEngine/PlanConfig.h"

#include <optional>
#include <span>
#include <vector>

/// The automatic editor: from the recorded events, the analyses and the user's edits to a plan.
///
/// All its functions are pure and deterministic: the same values give the same bits in every build
/// type and on every machine, without files, clock, locale or shared state. Every pass costs at
/// most n log n.
///
/// Threading: any thread, also several at once.
namespace zento::EditPlanner {

/// Everything a plan is made from.
struct PlanInput {
    /// The log, in recording order. A view, since an hour's log is large and many plans are made of
    /// it; its owner keeps it alive during the call.
    std::span<const InputEvent> events;
    SessionMeta meta;
    PlanConfig config;
    std::optional<MusicInfo> music;
    Overrides overrides;
    OutputSpec output;
    StyleSpec style;
    std::vector<FramingHint> framingHints;
    std::vector<TranscriptSegment> transcript;
    std::optional<NarrationPlan> narration;
    std::optional<SemanticNotes> semantics;
    std::optional<WebcamPlan> webcam;
    std::optional<NarrationPlan> systemAudio;

    /// Source times at which the picture changed, ascending: what stands in for the clicks and keys
    /// of a recording with `SessionMeta::hasPointerOnly`, and counts for no other.
    std::vector<double> pictureChanges;
};

/// The whole plan. It has no title and end card; those are the application's to add.
///
/// The user's zoom edits change the camera only: what is kept and how fast it plays follows the
/// moments as they were found. With speech on the recording nothing is retimed to the music.
///
/// Bad input degrades to an empty or wide plan, with one exception: throws `Error` when the first
/// action lies so far past `meta.duration` that nothing can be kept.
EditPlan plan(const PlanInput& input);

} // namespace zento::EditPlanner
