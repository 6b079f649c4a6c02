#pragma once

#include "ZentoCapture/Backends/PixelRect.h"

#include <cstddef>
#include <cstdint>

namespace zento {

/// Where a pixel's colours stand in memory.
struct PixelOrder {
    int bytes = 4; // of a pixel, 3 or 4
    int blue = 0;  // the byte that holds it; of 10 bits, its lowest bit in the little-endian word
    int green = 1;
    int red = 2;
    int bits = 8; // of a colour, 8 or 10

    bool isBgrx() const { return *this == PixelOrder{}; }
    bool operator==(const PixelOrder&) const = default;
};

/// A picture as somebody else's memory has it.
struct ForeignPicture {
    const std::uint8_t* data = nullptr;
    std::ptrdiff_t stride = 0; // bytes; below 0 where rows stand from the bottom up
    int width = 0;
    int height = 0;
    PixelOrder order;
};

/// Copies `area` of the picture, as B, G, R and 255, ten bits rounded to eight, to rows of
/// `area.width` pixels. The area lies within the picture.
void copyAsBgrx(const ForeignPicture& picture, const PixelRect& area, std::uint32_t* pixels);

} // namespace zento
