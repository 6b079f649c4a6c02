#pragma once

#include "ZentoCore/Analyses.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zento {

/// Where a sound is loud, as stretches of narration without text: blocks of 50 ms above the
/// geometric mean of the noise floor and the loud level, pauses of half a second between them,
/// longer than 0.3 s. The sound is added as it comes; what is kept is a number a block.
class EnergyLevels {
public:
    explicit EnergyLevels(double sampleRate);

    void add(std::span<const float> sound);

    /// `offset` is added to all times.
    std::vector<TranscriptSegment> segments(double offset) const;

private:
    std::size_t m_block; // samples of one; 0 of a rate too low to have blocks
    double m_step;       // seconds of one
    std::vector<double> m_levels;
    double m_sum = 0; // of the squares of the block under way
    std::size_t m_count = 0;
};

/// The same of a whole sound.
std::vector<TranscriptSegment>
energySegments(std::span<const float> sound, double sampleRate, double offset);

} // namespace zento
