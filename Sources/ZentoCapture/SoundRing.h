#pragma once

#include "ZentoCapture/ClockedWav.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace zento {

/// Carries sound from a real-time thread to one that may wait for a disk.
///
/// Threading: `push` by one thread, which neither locks nor allocates; `front` and `pop` by one
/// other.
class SoundRing {
public:
    /// Room for so many stretches and so many samples of all channels together.
    SoundRing(std::size_t stretchCount, std::size_t sampleCount);

    /// Adds a stretch: its channels, each of `length` samples. False, and nothing is added, when
    /// there is no room.
    bool push(
        double time,
        int sampleRate,
        std::span<const float* const> channels,
        std::size_t length) noexcept;

    /// The oldest stretch, if there is one; good until `pop`.
    std::optional<TimedSound> front();

    /// Gives its room back.
    void pop();

private:
    /// Positions count samples from the beginning of time; the ring holds each at its remainder.
    struct Stretch {
        double time = 0;
        int sampleRate = 0;
        std::size_t channelCount = 0;
        std::size_t length = 0;
        std::uint64_t begin = 0;
    };

    std::vector<Stretch> m_stretches;
    std::vector<float> m_samples;
    std::uint64_t m_end = 0;                 // behind the newest stretch; of the thread that pushes
    std::atomic<std::uint64_t> m_freed = 0;  // what lies before may be overwritten
    std::atomic<std::uint64_t> m_pushed = 0; // stretches
    std::atomic<std::uint64_t> m_popped = 0;
    std::vector<std::span<const float>> m_views; // of the thread that pops
};

} // namespace zento
