#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zento {

/// What brings a stretch of sound to its place in a file: frames of silence in front of it, frames
/// left out at its start, and frames that the rest is made longer (shorter if negative).
struct SoundPlacement {
    std::size_t silence = 0;
    std::size_t skip = 0;
    int stretch = 0;

    bool operator==(const SoundPlacement&) const = default;
};

/// Keeps a file of evenly spaced samples in step with the clock its stretches are stamped by.
///
/// A stretch that is more than `kJump` late leaves a gap, which becomes silence; one that is more
/// than that early overlaps what is there, and loses the overlap. One that is late by
/// `kLostShare` of its own length has lost one before it: a busy machine misses single cycles of 5
/// ms. What is less is a device whose clock runs a little fast or slow: once that adds up to
/// `kDriftLimit` the sound is stretched or shortened by a thousandth until it is in step again,
/// which nobody hears.
///
/// Threading: used by one thread at a time.
class SoundClock {
public:
    // Streams start, and are moved to another device, with jumps of 6 to 43 ms (measured).
    static constexpr double kJump = 0.010; // seconds
    static constexpr double kLostShare = 0.75;
    static constexpr double kDriftLimit = 0.002; // seconds
    static constexpr double kInStep = 0.0002;    // seconds; a correction ends here
    static constexpr double kStretch = 0.001;    // of a second, in a second

    explicit SoundClock(int sampleRate)
        : m_sampleRate(sampleRate)
    {
    }

    /// Where a stretch of `length` frames goes, whose first sample was heard at `time` in seconds.
    /// The first call starts the file.
    SoundPlacement place(double time, std::size_t length);

private:
    int drifted(double error, std::size_t length);

    int m_sampleRate;
    std::optional<double> m_start;
    std::int64_t m_frames = 0;    // in the file
    double m_drift = 0;           // seconds, smoothed
    bool m_isOverlapping = false; // all of the last stretch was left out
    bool m_isCorrecting = false;
    double m_owed = 0; // frames of a correction, less than one
};

} // namespace zento
