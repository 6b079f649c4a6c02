#include "ZentoEngine/EditPlanner.h"

#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/BeatSnapping.h"
#include "ZentoEngine/CameraDirector.h"
#include "ZentoEngine/Captions.h"
#include "ZentoEngine/Chapters.h"
#include "ZentoEngine/CursorSmoothing.h"
#include "ZentoEngine/EventLog.h"
#include "ZentoEngine/KeystrokeChips.h"
#include "ZentoEngine/MomentDetection.h"
#include "ZentoEngine/MusicPlanning.h"
#include "ZentoEngine/PointerAttention.h"
#include "ZentoEngine/RemovedRanges.h"
#include "ZentoEngine/SoundCues.h"
#include "ZentoEngine/SpeechRanges.h"
#include "ZentoEngine/TimeRemapConstruction.h"
#include "ZentoEngine/ZoomEdits.h"

#include <algorithm>
#include <utility>

namespace zento::EditPlanner {

namespace {

/// The source time the film keeps and its speeds.
std::vector<SpeedSegment> filmSegments(
    const PlanInput& input, std::span<const Moment> moments, std::span<const TimeRange> speech)
{
    std::vector<SpeedSegment> segments = subtract(
        buildTimeRemap(moments, input.meta.duration, input.config, speech),
        input.overrides.removedRanges);
    if (input.music && speech.empty()) {
        return snapToBeats(std::move(segments), input.music->grid.period, kBeatTolerance);
    }
    return segments;
}

std::vector<Moment> merged(std::vector<Moment> moments, std::span<const Moment> further)
{
    moments.insert(moments.end(), further.begin(), further.end());
    std::ranges::stable_sort(moments, {}, &Moment::start);
    return moments;
}

template <typename Item>
std::optional<std::vector<Item>> presentUnlessEmpty(std::vector<Item> items)
{
    return items.empty() ? std::nullopt : std::optional(std::move(items));
}

} // namespace

EditPlan plan(const PlanInput& input)
{
    const PlanConfig& config = input.config;
    const EventLog events(input.events);
    const std::vector<TimeRange> speech = speechRanges(input.transcript, kSpeechPad);
    const PointerAttention attention =
        input.meta.hasPointerOnly()
            ? pointerAttention(events.moves, input.pictureChanges, input.meta)
            : PointerAttention();
    const std::vector<Moment> moments =
        merged(detectMoments(events, input.meta, input.framingHints), attention.dwells);

    EditPlan plan;
    plan.output = input.output;
    plan.style = input.style;
    plan.timeRemap = filmSegments(input, merged(moments, attention.activity), speech);
    const RemapCurve remap(plan.timeRemap);

    CameraScript camera = buildCamera(
        applyZoomEdits(moments, input.overrides, events),
        remap,
        input.meta,
        config,
        input.overrides,
        input.semantics ? input.semantics->heroSourceTime : std::nullopt);
    plan.camera = std::move(camera.keyframes);
    plan.focusMoments = std::move(camera.focusMoments);
    plan.cursor = smoothCursor(events, moments, config);
    plan.clicks = clickMarkers(events, remap);
    plan.sfx = soundCues(plan.clicks, plan.camera, remap, config);
    std::ranges::stable_sort(plan.sfx, {}, &SFXCue::tOut);
    if (config.showKeystrokes) {
        plan.keystrokes = keystrokeChips(events, remap);
    }
    plan.captions = presentUnlessEmpty(buildCaptions(input.transcript, remap));
    if (input.semantics) {
        plan.chapters = presentUnlessEmpty(chapterMarkers(input.semantics->chapters, remap));
    }
    if (input.music) {
        plan.music = planMusic(*input.music, plan.timeRemap, speech, remap);
    }
    plan.narration = input.narration;
    plan.webcam = input.webcam;
    plan.systemAudio = input.systemAudio;
    return plan;
}

} // namespace zento::EditPlanner
