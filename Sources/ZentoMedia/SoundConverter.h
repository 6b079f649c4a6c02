#pragma once

#include "ZentoMedia/AudioReader.h"

#include <filesystem>
#include <memory>

namespace zento {

/// Turns sound of any rate and number of channels, which may change on the way, into one format.
/// One channel goes to both of two; two are mixed into one; more are mixed by their usual places.
///
/// Threading: used by one thread at a time.
class SoundConverter {
public:
    /// `path` is for messages.
    SoundConverter(const std::filesystem::path& path, int sampleRate, int channelCount);
    ~SoundConverter();
    SoundConverter(SoundConverter&&) noexcept;
    SoundConverter& operator=(SoundConverter&&) noexcept;

    /// What a stretch of `sampleRate` samples per second becomes, of any length, also none: a
    /// change of rate holds less than a millisecond back. Good until the next call.
    ///
    /// Throws `Error` with the code `kNoStereoBuffer` for a format that cannot be converted.
    AudioBlock convert(AudioBlock block, int sampleRate);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
