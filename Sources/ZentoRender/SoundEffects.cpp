#include "ZentoRender/SoundEffects.h"

#include "ZentoRender/SoundFormat.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace zento::AudioMixer {

namespace {

constexpr std::size_t kClickLength = 2646;   // 0.06 s
constexpr std::size_t kWhooshLength = 16758; // 0.38 s

/// White noise in [-1, 1) of a linear congruential generator.
class Noise {
public:
    explicit Noise(std::uint32_t seed)
        : m_state(seed)
    {
    }

    double next()
    {
        m_state = m_state * 1664525U + 1013904223U;
        return static_cast<std::int32_t>(m_state) * 0x1p-31;
    }

private:
    std::uint32_t m_state;
};

std::array<float, kClickLength> makeClick()
{
    constexpr double kTick = 11938.052083641214;  // 1900 Hz, in radians per second
    constexpr double kThump = 1507.9644737231006; // 240 Hz
    std::array<float, kClickLength> samples{};
    Noise noise(12345);
    float breath = 0;
    for (std::size_t n = 0; n < samples.size(); ++n) {
        const double t = static_cast<double>(n) / kSoundRate;
        const double tick = std::sin(t * kTick) * std::exp(-260 * t) * 0.5;
        const double thump = std::sin(t * kThump) * std::exp(-120 * t) * 0.45;
        breath = breath * 0.55F + static_cast<float>(noise.next()) * 0.45F;
        samples[n] = static_cast<float>(
            tick + thump + std::exp(-420 * t) * static_cast<double>(breath) * 0.25);
    }
    return samples;
}

std::array<float, kWhooshLength> makeWhoosh()
{
    constexpr double kPi = std::numbers::pi;
    std::array<float, kWhooshLength> samples{};
    Noise noise(67890);
    double fast = 0; // two low-passes; what one lets through and the other does not is the band
    double slow = 0;
    for (std::size_t n = 0; n < samples.size(); ++n) {
        const double swell = std::sin(kPi * static_cast<double>(n) / kWhooshLength);
        const double cutoff = 300 + 1100 * swell; // Hz
        const double coefficient = std::min(2 * kPi * cutoff / kSoundRate, 0.95);
        fast += coefficient * (noise.next() - fast);
        slow += 0.5 * coefficient * (fast - slow);
        samples[n] = static_cast<float>((fast - slow) * std::pow(swell, 1.6) * 1.6);
    }
    return samples;
}

} // namespace

std::span<const float> clickSFX()
{
    static const std::array<float, kClickLength> kSamples = makeClick();
    return kSamples;
}

std::span<const float> whooshSFX()
{
    static const std::array<float, kWhooshLength> kSamples = makeWhoosh();
    return kSamples;
}

} // namespace zento::AudioMixer
