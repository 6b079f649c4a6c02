#pragma once

#include <cstddef>
#include <cstdint>

namespace zento {

// Rows of 8-bit samples. Source-over is affine, so the same arithmetic serves every plane of either
// layout. Masks and opacities count 255 as one; every product is divided by 255 and rounded to the
// nearest. The same bytes on every processor. `out` may be one of the inputs, not overlap them
// otherwise; alignment and count are free.
//
// Threading: free functions over the caller's memory.

/// row = row + (value - row) * mask
void blendConstant(
    std::uint8_t* row, const std::uint8_t* mask, std::uint8_t value, std::size_t count);

/// out = below + (above - below) * mask
void blendMasked(
    std::uint8_t* out,
    const std::uint8_t* below,
    const std::uint8_t* above,
    const std::uint8_t* mask,
    std::size_t count);

/// row = row * (1 - alpha * opacity) + premultiplied * opacity
void blendPremultiplied(
    std::uint8_t* row,
    const std::uint8_t* premultiplied,
    const std::uint8_t* alpha,
    std::uint8_t opacity,
    std::size_t count);

/// out = a * b
void multiplyMasks(
    std::uint8_t* out, const std::uint8_t* a, const std::uint8_t* b, std::size_t count);

/// mask = mask * opacity
void scaleMask(std::uint8_t* mask, std::uint8_t opacity, std::size_t count);

/// [0, 1] as 0 to 255, rounded; values beyond are limited.
std::uint8_t opacityByte(double opacity);

} // namespace zento
