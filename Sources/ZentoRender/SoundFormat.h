#pragma once

#include <cmath>
#include <cstdint>

namespace zento {

/// The one format the sound of a film is made in: two channels of floats, full scale at ±1.
inline constexpr int kSoundRate = 44100; // samples per second

/// Sample counts and places may be far outside any film, so that they are whole doubles first.
/// The integer part of `seconds` times the rate, towards zero.
inline std::int64_t sampleIndex(double seconds)
{
    constexpr double kFarAway = 0x1p52;
    const double samples = std::trunc(seconds * kSoundRate);
    return static_cast<std::int64_t>(std::fmin(std::fmax(samples, -kFarAway), kFarAway));
}

} // namespace zento
