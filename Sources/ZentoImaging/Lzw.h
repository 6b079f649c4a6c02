#pragma once

#include "ZentoImaging/Palette.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zento {

/// One pixel to be compressed.
struct LzwPixel {
    PackedRgb color = 0;      // what it should look like
    std::uint8_t nearest = 0; // the index that shows it best
    bool mayStay = false;     // what is there will do, and only that or a colour near enough
};

/// What the indices of an image stand for. The one behind the last colour leaves what is there.
struct LzwPalette {
    std::span<const PackedRgb> colors; // 1 to 255
    /// The largest `colorDistance` a pixel may have from another index than its nearest.
    std::uint32_t tolerance = 0;

    std::uint8_t unchanged() const { return static_cast<std::uint8_t>(colors.size()); }
};

struct LzwImage {
    int codeSize = 8;                  // bits of an index, [2, 8]
    std::vector<std::uint8_t> bytes;   // the code stream, not yet cut into blocks
    std::vector<std::uint8_t> indices; // what it stands for, one a pixel
};

/// Compresses an image as GIF does. Wherever several indices will do for a pixel, those are taken
/// that repeat the longest piece of what went before: most of a film's noise then costs nothing.
///
/// Threading: a free function.
LzwImage compressLzw(std::span<const LzwPixel> pixels, const LzwPalette& palette);

} // namespace zento
