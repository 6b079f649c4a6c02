#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoIntelligence/SessionDigest.h"
#include "ZentoIntelligence/SystemLanguageModel.h"

#include <stop_token>
#include <string_view>

namespace zento {

/// Whether a language model writes.
enum class CopyEngineStatus { Available, ModelMissing, ModelLoading, Unsupported };

/// A sentence for the settings.
std::string_view explanation(CopyEngineStatus status);

} // namespace zento

/// Title, caption and post of a film.
///
/// Threading: any thread; `copy` and `generate` block for at most a minute.
namespace zento::CopyGenerator {

CopyEngineStatus status(const SystemLanguageModel& model);

/// By the model where there is one, else, and where it fails, by templates. Never fails.
VideoCopy copy(
    const SessionDigest& digest,
    const SystemLanguageModel& model,
    const std::stop_token& stop = {});

/// By the model, unchanged. Throws `Error` as `SystemLanguageModel::respond` does, and
/// `kUndecodable` for an answer that lacks a text.
VideoCopy generate(
    const SessionDigest& digest,
    const SystemLanguageModel& model,
    const std::stop_token& stop = {});

/// By templates.
VideoCopy fallback(const SessionDigest& digest);

} // namespace zento::CopyGenerator
