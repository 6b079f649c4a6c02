#pragma once

#include "ZentoMedia/AudioReader.h"

#include <memory>
#include <stop_token>

namespace zento {

/// Plays stereo sound to the desktop's default output. Destroying it falls silent at once.
///
/// Threading: used by one thread at a time.
class SoundOutput {
public:
    static constexpr int kSampleRate = 44100;

    SoundOutput() = default;
    virtual ~SoundOutput() = default;
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    /// Takes two channels; waits while more than a second is still to be heard. Gives up soon after
    /// `stop` is requested.
    virtual void play(const AudioBlock& sound, const std::stop_token& stop) = 0;

    /// Waits until all of it has been heard, or `stop` is requested.
    virtual void finish(const std::stop_token& stop) = 0;
};

/// Throws `Error` of the system where no sound service answers.
std::unique_ptr<SoundOutput> openSoundOutput();

} // namespace zento
