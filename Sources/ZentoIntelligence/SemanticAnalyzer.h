#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoIntelligence/SystemLanguageModel.h"

#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

/// Asks a language model for the story of a recording: its payoff, and its chapters. Without a
/// model there is no story; nothing is made up for it.
///
/// Threading: any thread; calls block for at most a minute.
namespace zento::SemanticAnalyzer {

/// One line of what the user did.
struct KeyMoment {
    double sourceTime = 0; // seconds
    std::string label;
    bool operator==(const KeyMoment&) const = default;
};

using ModelFinder = std::function<SystemLanguageModel(const std::stop_token&)>;

/// The bundle's notes: read where they are, else made and kept in the bundle. Nothing without a
/// model, with fewer than three moments, and where the model fails; then nothing is kept either,
/// and the next call tries again. The model is looked for only if it will be asked.
std::optional<SemanticNotes> loadOrAnalyze(
    const SessionBundle& bundle,
    const std::vector<TranscriptSegment>& transcript,
    const ModelFinder& findModel,
    const std::stop_token& stop = {});

/// Named clicks and typing bursts, in order; of a long recording the first 24.
std::vector<KeyMoment> keyMoments(std::span<const InputEvent> events);

/// What the model is asked.
std::string storyPrompt(
    std::span<const KeyMoment> moments,
    const SessionMeta& meta,
    std::span<const TranscriptSegment> transcript);

/// Throws `Error` as `SystemLanguageModel::respond` does, and `kUndecodable` for an answer that
/// lacks a part.
SemanticNotes analyze(
    std::span<const KeyMoment> moments,
    const SessionMeta& meta,
    std::span<const TranscriptSegment> transcript,
    const SystemLanguageModel& model,
    const std::stop_token& stop = {});

/// A model's answer, as far as it fits the moments. `chapters`: the index each starts at, and its
/// title.
SemanticNotes notes(
    int heroIndex,
    std::span<const std::pair<int, std::string>> chapters,
    std::span<const KeyMoment> moments);

} // namespace zento::SemanticAnalyzer
