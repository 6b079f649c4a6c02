#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoIntelligence/SpeechEngine.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

/// When, and what, was said on a recording's narration. No failure reaches the caller: without an
/// engine, without words, the loudness alone tells where someone speaks.
///
/// Threading: any thread; calls block for about a third of the narration's length.
namespace zento::NarrationTranscriber {

using EngineFactory = std::function<std::unique_ptr<SpeechEngine>()>;

/// The bundle's transcript: read where it is, else made and kept in the bundle, also when it is
/// empty. Empty and not kept without a narration, and once `stop` is requested.
std::vector<TranscriptSegment> loadOrTranscribe(
    const SessionBundle& bundle,
    const std::stop_token& stop = {},
    const EngineFactory& makeEngine = makeBestEngine);

/// `offset`, `duration`: seconds of the recording at which the sound starts, and of the whole.
std::vector<TranscriptSegment> transcribe(
    const std::filesystem::path& audio,
    double offset,
    double duration,
    const std::stop_token& stop = {},
    const EngineFactory& makeEngine = makeBestEngine);

/// Segments within [0, duration], those of 0.15 s and less left out, by their start.
std::vector<TranscriptSegment> clamped(std::vector<TranscriptSegment> segments, double duration);

} // namespace zento::NarrationTranscriber
