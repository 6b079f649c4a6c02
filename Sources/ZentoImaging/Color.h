#pragma once

#include <array>
#include <cstdint>

namespace zento {

/// How the three planes of a picture hold colour.
enum class Layout {
    Yuv420, // Y', Cb, Cr, BT.709 limited range, chroma halved both ways and sited left (MPEG-2)
    Rgb,    // R', G', B', full range sRGB, all of full size
};

/// A colour in sRGB's gamma-coded values, not premultiplied. Every component is in [0, 1].
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static Color gray(double value, double alpha = 1) { return {value, value, value, alpha}; }
    Color withAlpha(double value) const { return {red, green, blue, value}; }

    bool operator==(const Color&) const = default;
};

/// What an opaque area of that colour holds in each plane; `alpha` is not looked at.
std::array<std::uint8_t, 3> planeValues(const Color& color, Layout layout);

/// What a pixel of these plane values looks like, limited to [0, 1].
Color colorOfPlanes(const std::array<std::uint8_t, 3>& values, Layout layout);

} // namespace zento
