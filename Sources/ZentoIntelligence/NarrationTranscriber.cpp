#include "ZentoIntelligence/NarrationTranscriber.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/CaptionSegments.h"
#include "ZentoIntelligence/EnergySegments.h"
#include "ZentoIntelligence/NarrationSound.h"
#include "ZentoIntelligence/VoiceActivity.h"
#include "ZentoMedia/AudioReader.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace zento::NarrationTranscriber {

namespace {

std::vector<TranscriptSegment> spoken(
    const std::filesystem::path& audio,
    double offset,
    const std::stop_token& stop,
    const EngineFactory& makeEngine)
{
    const std::vector<float> sound = narrationSound(audio, stop);
    const auto stretches = speechStretches(sound, stop);
    if (stretches.empty())
        return {};
    return captionSegments(makeEngine()->words(sound, stretches, {}, stop), offset);
}

std::vector<TranscriptSegment>
loud(const std::filesystem::path& audio, double offset, const std::stop_token& stop)
{
    AudioReader reader(audio);
    EnergyLevels levels(reader.sampleRate());
    while (const auto block = reader.next()) {
        if (stop.stop_requested())
            return {};
        levels.add(block->front());
    }
    return levels.segments(offset);
}

/// What `work` gives, or nothing if it fails.
template <typename Work>
std::vector<TranscriptSegment> orNothing(Work work)
{
    try {
        return work();
    } catch (const std::exception&) { // the next way is tried, and the caller lives without
        return {};
    }
}

} // namespace

std::vector<TranscriptSegment> loadOrTranscribe(
    const SessionBundle& bundle, const std::stop_token& stop, const EngineFactory& makeEngine)
{
    std::error_code ignored;
    if (!std::filesystem::exists(bundle.narrationURL(), ignored))
        return {};
    try {
        return decodeTranscript(readFile(bundle.transcriptURL()));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): it is made now
    }
    auto segments = transcribe(
        bundle.narrationURL(),
        bundle.meta.narrationOffset.value_or(0),
        bundle.meta.duration,
        stop,
        makeEngine);
    if (stop.stop_requested())
        return {};
    try {
        writeFile(bundle.transcriptURL(), encodeTranscript(segments));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): it is made again the next time
    }
    return segments;
}

std::vector<TranscriptSegment> transcribe(
    const std::filesystem::path& audio,
    double offset,
    double duration,
    const std::stop_token& stop,
    const EngineFactory& makeEngine)
{
    auto segments = orNothing([&] { return spoken(audio, offset, stop, makeEngine); });
    if (segments.empty() && !stop.stop_requested())
        segments = orNothing([&] { return loud(audio, offset, stop); });
    return clamped(std::move(segments), duration);
}

std::vector<TranscriptSegment> clamped(std::vector<TranscriptSegment> segments, double duration)
{
    constexpr double kShortest = 0.15;
    for (TranscriptSegment& segment : segments) {
        segment.start = std::max(segment.start, 0.0);
        segment.end = std::min(segment.end, duration);
    }
    std::erase_if(
        segments, [](const TranscriptSegment& s) { return !(s.end - s.start > kShortest); });
    std::ranges::stable_sort(segments, {}, &TranscriptSegment::start);
    return segments;
}

} // namespace zento::NarrationTranscriber
