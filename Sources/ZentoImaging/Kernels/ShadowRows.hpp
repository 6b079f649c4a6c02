#pragma once

#include <cstddef>
#include <cstdint>

namespace zento::kernel {

// Coverage of 15 bits; kCovered is one, so that it is 255 after seven bits are dropped.
inline constexpr int kCovered = 255 * 128;

/// out = profile * factor, of which 32767 is one.
void scaleProfile(
    const std::int16_t* profile, std::int16_t factor, std::size_t count, std::int16_t* out);

/// Four corners of what is interpolated: `above` and `below` hold a row each, `Next` the place one
/// step to the right.
struct Patch {
    const std::int16_t* above;
    const std::int16_t* aboveNext;
    const std::int16_t* below;
    const std::int16_t* belowNext;
    std::int16_t right; // the share of `Next`, 32767 being one
    std::int16_t down;  // the share of `below`
};

/// out = out - patch, interpolated.
void subtractPatch(const Patch& patch, std::size_t count, std::int16_t* out);

/// mask = coverage * opacity, of which 32767 is one; negative coverage is none.
void coverageToMask(
    const std::int16_t* coverage, std::int16_t opacity, std::size_t count, std::uint8_t* mask);

} // namespace zento::kernel
