#include "Zento/Model/PlanSources.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoEngine/BeatDetector.h"
#include "ZentoMedia/MovieTimes.h"

#include <filesystem>
#include <system_error>

namespace zento {

namespace {

bool isThere(const std::filesystem::path& file)
{
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

/// A file of an analysis; anything wrong with it means that the analysis is not there.
template <typename Decode>
auto analysis(const std::filesystem::path& file, Decode decode)
    -> std::optional<decltype(decode(""))>
{
    try {
        return decode(readFile(file));
    } catch (const Error&) {
        return std::nullopt;
    }
}

/// With captions off the stretches stay, so that speech is still protected, but have no text.
std::vector<TranscriptSegment>
spokenSegments(std::vector<TranscriptSegment> segments, const AppSettings& settings)
{
    if (!settings.showCaptions) {
        for (TranscriptSegment& segment : segments) {
            segment.text.clear();
        }
    }
    return segments;
}

std::optional<NarrationPlan> soundTrack(
    bool exists, const std::filesystem::path& file, std::optional<double> offset, double gainDb)
{
    if (!exists) {
        return std::nullopt;
    }
    return NarrationPlan{file.string(), offset.value_or(0), gainDb};
}

WebcamPlan webcam(const SessionBundle& bundle, const AppSettings& settings)
{
    return {
        .file = bundle.webcamURL().string(),
        .offset = bundle.meta.webcamOffset.value_or(0),
        .corner = settings.webcamCorner,
        .size = settings.webcamSize,
        .shape = settings.webcamShape,
        .ring = settings.webcamRing,
        .roundness = settings.webcamRoundness,
        .mirror = settings.webcamMirror,
        .zoom = settings.webcamZoom,
        .shadow = settings.webcamShadow,
        .enhance = settings.webcamEnhance,
        .blurBackground = settings.webcamBlurBackground,
    };
}

/// The recorder writes a picture when it is another than the one before.
std::vector<double> pictureChanges(const SessionBundle& bundle)
{
    try {
        return bundle.meta.hasPointerOnly() ? pictureTimes(bundle.screenMovieURL())
                                            : std::vector<double>();
    } catch (const Error&) {
        return {}; // whoever opens the movie will say so
    }
}

} // namespace

SavedOverrides loadSavedOverrides(const SessionBundle& bundle)
{
    try {
        return parseFile(bundle.overridesURL(), decodeSavedOverrides);
    } catch (const Error& error) {
        if (error.domain() == "Zento" && error.code() == ErrorCode::kNoDefinedPlan) {
            throw;
        }
        return {};
    }
}

std::optional<VideoCopy> loadVideoCopy(const SessionBundle& bundle)
{
    return analysis(bundle.copyURL(), decodeVideoCopy);
}

BundleAnalyses loadAnalyses(const SessionBundle& bundle)
{
    return {
        .framingHints =
            analysis(bundle.framingURL(), decodeFramingHints).value_or(std::vector<FramingHint>{}),
        .transcript = analysis(bundle.transcriptURL(), decodeTranscript)
                          .value_or(std::vector<TranscriptSegment>{}),
        .semantics = analysis(bundle.semanticsURL(), decodeSemanticNotes),
        .hasNarration = isThere(bundle.narrationURL()),
        .hasSystemAudio = isThere(bundle.systemAudioURL()),
        .hasWebcam = isThere(bundle.webcamURL()),
        .hasMusic = isThere(bundle.musicURL()),
        .pictureChanges = pictureChanges(bundle)};
}

EditPlanner::PlanInput planInput(
    const SessionBundle& bundle,
    const BundleAnalyses& analyses,
    const AppSettings& settings,
    const SavedOverrides& edits,
    const std::optional<std::string>& desktopImage)
{
    EditPlanner::PlanInput input;
    input.events = bundle.events;
    input.meta = bundle.meta;
    input.pictureChanges = analyses.pictureChanges;
    input.config = settings.planConfig();
    input.overrides = edits.overrides(bundle.meta.duration);
    input.output = settings.outputSpec();
    input.style = settings.styleSpec(desktopImage);
    input.framingHints = analyses.framingHints;
    input.transcript = spokenSegments(analyses.transcript, settings);
    input.narration = soundTrack(
        analyses.hasNarration,
        bundle.narrationURL(),
        bundle.meta.narrationOffset,
        settings.narrationGainDb);
    if (settings.semanticEdit) {
        input.semantics = analyses.semantics;
    }
    if (analyses.hasWebcam) {
        input.webcam = webcam(bundle, settings);
    }
    input.systemAudio = soundTrack(
        analyses.hasSystemAudio,
        bundle.systemAudioURL(),
        bundle.meta.systemAudioOffset,
        settings.systemAudioGainDb);
    return input;
}

EditPlanner::PlanInput gatherPlanInput(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const SavedOverrides& edits,
    const std::optional<std::string>& desktopImage)
{
    return planInput(bundle, loadAnalyses(bundle), settings, edits, desktopImage);
}

std::optional<EditPlanner::MusicInfo>
analyzedMusic(const SessionBundle& bundle, const SavedOverrides& edits, const std::stop_token& stop)
{
    if (!isThere(bundle.musicURL())) {
        return std::nullopt;
    }
    return EditPlanner::MusicInfo{
        .file = std::filesystem::absolute(bundle.musicURL()).string(),
        .grid = BeatDetector::analyze(bundle.musicURL(), stop),
        .start = edits.musicStart,
        .end = edits.musicEnd};
}

EditPlan planAtLevels(const EditPlanner::PlanInput& input, const AppSettings& settings)
{
    EditPlan plan = EditPlanner::plan(input);
    if (plan.music) {
        plan.music->gainDb += settings.musicGainDb - AppSettings().musicGainDb;
    }
    return plan;
}

} // namespace zento
