#pragma once

#include "ZentoCapture/Backends/PixelRect.h"

#include <cstddef>
#include <cstdint>

namespace zento {

/// A picture of a part of the screen, to be drawn into. Owns nothing. Pixels are B, G, R and alpha
/// in memory, alpha premultiplied where it counts.
struct PixelTarget {
    std::uint32_t* pixels = nullptr; // rows of `rect.width`, one after the other
    PixelRect rect;                  // of the root window

    std::uint32_t* at(int x, int y) const
    {
        return pixels + std::ptrdiff_t{y - rect.y} * rect.width + (x - rect.x);
    }
};

/// Copies what the two pictures share of `area`.
void copyPixels(const PixelTarget& target, const PixelTarget& source, const PixelRect& area);

/// The same, the source's alpha over the target.
void blendPixels(const PixelTarget& target, const PixelTarget& source, const PixelRect& area);

/// Fills an area of which nothing is known: every column goes evenly from the pixel above it to the
/// pixel below it, as far as the picture has them; without both it becomes black.
void bridgePixels(const PixelTarget& target, const PixelRect& area);

} // namespace zento
