#pragma once

#include "ZentoIntelligence/SpeechStretch.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

struct SpokenWord {
    double start = 0; // seconds of the sound
    double end = 0;
    std::string text;
    bool operator==(const SpokenWord&) const = default;
};

/// Turns speech into words. Threading: used by one thread at a time.
class SpeechEngine {
public:
    virtual ~SpeechEngine() = default;

    /// The words of the stretches of a sound at `kSpeechRate`, in order. `onProgress` may be empty;
    /// it is told how much is done, in (0, 1]. Ends within a stretch once `stop` is requested, with
    /// what it has. Throws `Error`.
    virtual std::vector<SpokenWord> words(
        std::span<const float> sound,
        std::span<const SpeechStretch> stretches,
        const std::function<void(double)>& onProgress,
        const std::stop_token& stop) = 0;
};

/// PocketSphinx with Debian's English model: no download, no other language; about one word in four
/// to eight is wrong. Throws `Error` where the model is not installed.
std::unique_ptr<SpeechEngine> makeSphinx();
bool canUseSphinx(); // the model is installed; blocks on a disk

/// whisper.cpp with a model of the user's: any language the model knows. Cancelling takes less than
/// a second. Throws `Error` kNoSpeechModel for a file that is no whole model, and where this build
/// or this processor cannot use it.
std::unique_ptr<SpeechEngine> makeWhisper(const std::filesystem::path& model);
bool canUseWhisper();

/// whisper.cpp where the model is there and whole, else PocketSphinx.
std::unique_ptr<SpeechEngine> makeEngineFor(const std::filesystem::path& model);

/// The same for the user's model, see `speechModelFile`.
std::unique_ptr<SpeechEngine> makeBestEngine();

} // namespace zento
