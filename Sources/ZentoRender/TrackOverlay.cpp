#include "ZentoRender/TrackOverlay.h"

#include "ZentoRender/SoundFormat.h"

#include <algorithm>
#include <cmath>

namespace zento {

namespace {

constexpr std::int64_t kRampSamples = 264; // 6 ms

bool isNormalSpeed(const SpeedSegment& segment)
{
    return std::abs(segment.speed - 1) < 0.01;
}

} // namespace

TrackOverlay::TrackOverlay(
    const NarrationPlan& track, const std::vector<SpeedSegment>& timeRemap, double titleOffset)
    : m_gain(std::pow(10, track.gainDb / 20))
{
    double cursor = titleOffset;
    for (const SpeedSegment& segment : timeRemap) {
        const double length = segment.sourceEnd - segment.sourceStart;
        if (isNormalSpeed(segment))
            m_stretches.push_back(
                {.source = sampleIndex(segment.sourceStart - track.offset),
                 .film = sampleIndex(cursor),
                 .count = sampleIndex(length)});
        cursor += length / segment.speed;
    }
}

std::int64_t TrackOverlay::end() const
{
    std::int64_t end = 0;
    for (const Stretch& stretch : m_stretches)
        end = std::max(end, stretch.source + stretch.count);
    return end;
}

float TrackOverlay::gainAt(const Stretch& stretch, std::int64_t k) const
{
    constexpr auto kRamp = static_cast<double>(kRampSamples);
    double gain = m_gain;
    if (k < kRampSamples)
        gain *= static_cast<double>(k) / kRamp;
    if (const std::int64_t rest = stretch.count - k; rest < kRampSamples)
        gain *= static_cast<double>(rest) / kRamp;
    return static_cast<float>(gain);
}

void TrackOverlay::add(
    AudioBlock block, std::int64_t first, std::span<float> left, std::span<float> right) const
{
    const auto blockEnd = first + std::ssize(block.front());
    for (const Stretch& stretch : m_stretches) {
        const std::int64_t begin =
            std::max({std::int64_t{0}, first - stretch.source, -stretch.film});
        const std::int64_t end =
            std::min({stretch.count, blockEnd - stretch.source, std::ssize(left) - stretch.film});
        for (std::int64_t k = begin; k < end; ++k) {
            const float gain = gainAt(stretch, k);
            const auto from = static_cast<std::size_t>(stretch.source + k - first);
            const auto to = static_cast<std::size_t>(stretch.film + k);
            left[to] += gain * block.front()[from];
            right[to] += gain * block.back()[from];
        }
    }
}

} // namespace zento
