#include "ZentoIntelligence/EnergySegments.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zento {

namespace {

double thresholdOf(std::vector<double> levels)
{
    std::ranges::sort(levels);
    const double floor = std::max(levels[levels.size() / 10], 1e-6);
    const double high = levels[levels.size() * 9 / 10];
    return std::sqrt(floor * std::max(4 * floor, high));
}

} // namespace

EnergyLevels::EnergyLevels(double sampleRate)
    : m_block(static_cast<std::size_t>(sampleRate * 0.05))
    , m_step(static_cast<double>(m_block) / sampleRate)
{
}

void EnergyLevels::add(std::span<const float> sound)
{
    if (m_block == 0)
        return;
    for (const float sample : sound) {
        m_sum += static_cast<double>(sample) * static_cast<double>(sample);
        if (++m_count == m_block) {
            m_levels.push_back(std::sqrt(m_sum / static_cast<double>(m_count)));
            m_sum = 0;
            m_count = 0;
        }
    }
}

std::vector<TranscriptSegment> EnergyLevels::segments(double offset) const
{
    constexpr double kLongestPause = 0.5; // seconds, within one segment
    constexpr double kShortest = 0.3;
    std::vector<double> levels = m_levels;
    if (m_count > 0) // the last block may be shorter
        levels.push_back(std::sqrt(m_sum / static_cast<double>(m_count)));
    if (levels.empty())
        return {};
    const double threshold = thresholdOf(levels);
    std::vector<TranscriptSegment> segments;
    bool isSilent = true;
    double lastVoice = -1;
    double start = 0;
    const auto close = [&] {
        segments.push_back(
            {.start = offset + start, .end = offset + lastVoice + m_step, .text = {}});
    };
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const double time = static_cast<double>(i) * m_step;
        if (levels[i] >= threshold) {
            lastVoice = time;
            if (isSilent)
                start = time;
            isSilent = false;
        } else if (!isSilent && time - lastVoice > kLongestPause) {
            close();
            isSilent = true;
        }
    }
    if (!isSilent)
        close();
    std::erase_if(
        segments, [](const TranscriptSegment& s) { return s.end - s.start <= kShortest; });
    return segments;
}

std::vector<TranscriptSegment>
energySegments(std::span<const float> sound, double sampleRate, double offset)
{
    EnergyLevels levels(sampleRate);
    levels.add(sound);
    return levels.segments(offset);
}

} // namespace zento
