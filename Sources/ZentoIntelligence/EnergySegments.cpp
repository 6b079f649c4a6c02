#include "ZentoIntelligence/EnergySegments.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zento {

namespace {

/// The root mean square of each block, the last one possibly shorter.
std::vector<double> levelsOf(std::span<const float> sound, std::size_t block)
{
    std::vector<double> levels;
    for (std::size_t at = 0; at < sound.size(); at += block) {
        const auto piece = sound.subspan(at, std::min(block, sound.size() - at));
        double sum = 0;
        for (const float sample : piece)
            sum += static_cast<double>(sample) * static_cast<double>(sample);
        levels.push_back(std::sqrt(sum / static_cast<double>(piece.size())));
    }
    return levels;
}

double thresholdOf(std::vector<double> levels)
{
    std::ranges::sort(levels);
    const double floor = std::max(levels[levels.size() / 10], 1e-6);
    const double high = levels[levels.size() * 9 / 10];
    return std::sqrt(floor * std::max(4 * floor, high));
}

} // namespace

std::vector<TranscriptSegment>
energySegments(std::span<const float> sound, double sampleRate, double offset)
{
    constexpr double kLongestPause = 0.5; // seconds, within one segment
    constexpr double kShortest = 0.3;
    const auto block = static_cast<std::size_t>(sampleRate * 0.05);
    if (sound.empty() || block == 0)
        return {};
    const std::vector<double> levels = levelsOf(sound, block);
    const double threshold = thresholdOf(levels);
    const double step = static_cast<double>(block) / sampleRate;
    std::vector<TranscriptSegment> segments;
    bool isSilent = true;
    double lastVoice = -1;
    double start = 0;
    const auto close = [&] {
        segments.push_back({.start = offset + start, .end = offset + lastVoice + step, .text = {}});
    };
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const double time = static_cast<double>(i) * step;
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

} // namespace zento
