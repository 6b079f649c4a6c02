#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace zento {

/// An opaque colour of 8 bits a component, 0xRRGGBB.
using PackedRgb = std::uint32_t;

constexpr PackedRgb packRgb(std::uint32_t red, std::uint32_t green, std::uint32_t blue)
{
    return red << 16 | green << 8 | blue;
}

/// How far two colours lie apart: the squared differences of red, green and blue, weighted 3, 4 and
/// 2 for what the eye makes of them. [0, 585225]
constexpr std::uint32_t colorDistance(PackedRgb a, PackedRgb b)
{
    const auto squared = [a, b](int shift) {
        const int difference =
            static_cast<int>(a >> shift & 0xff) - static_cast<int>(b >> shift & 0xff);
        return static_cast<std::uint32_t>(difference * difference);
    };
    return 3 * squared(16) + 4 * squared(8) + 2 * squared(0);
}

/// The largest difference of a component, [0, 255].
constexpr int largestDifference(PackedRgb a, PackedRgb b)
{
    int largest = 0;
    for (const int shift : {0, 8, 16}) {
        const int difference =
            static_cast<int>(a >> shift & 0xff) - static_cast<int>(b >> shift & 0xff);
        largest = difference > largest ? difference : -difference > largest ? -difference : largest;
    }
    return largest;
}

/// Up to `maxColors` colours, [2, 256], that show these pixels best; fewer where fewer do nearly as
/// well. The order of the pixels has no meaning. Throws `Error` without memory.
std::vector<PackedRgb> choosePalette(std::span<const PackedRgb> pixels, int maxColors);

/// A palette that finds the nearest of its colours fast.
///
/// Threading: one thread at a time: it remembers what it found.
class ColorTable {
public:
    explicit ColorTable(std::vector<PackedRgb> colors); // 1 to 256 colours

    std::span<const PackedRgb> colors() const { return m_colors; }
    PackedRgb color(std::uint8_t index) const { return m_colors[index]; }
    std::uint8_t nearest(PackedRgb color);

private:
    struct Found {
        PackedRgb color = ~PackedRgb{0}; // no colour
        std::uint8_t index = 0;
    };
    std::uint8_t search(PackedRgb color) const;

    std::vector<PackedRgb> m_colors;
    std::vector<Found> m_found;
};

} // namespace zento
