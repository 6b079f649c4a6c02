#pragma once

#include <span>
#include <vector>

namespace zento::BeatDetector {

/// Where a sound begins something new, hop by hop of 512 samples.
struct Onsets {
    std::vector<float>
        envelope; // ≥ 0: by how much the change stands out from the half second before
    std::vector<float> lowFlux; // ≥ 0: the growth of the spectrum below 260 Hz
};

/// How many hops the frames of 1024 samples cover; 0 for sound too short to analyse.
std::size_t hopCount(std::size_t sampleCount);

inline constexpr std::size_t kHopSamples = 512;

/// `sampleRate`: (0, ∞). Nothing for sound too short to analyse.
Onsets findOnsets(std::span<const float> samples, double sampleRate);

} // namespace zento::BeatDetector
