#include "ZentoImaging/Color.h"

#include <algorithm>
#include <cmath>

namespace zento {

namespace {

// Rec. ITU-R BT.709-6, item 3.2.
constexpr double kRed = 0.2126;
constexpr double kGreen = 0.7152;
constexpr double kBlue = 0.0722;
constexpr double kCbRange = 2 * (1 - kBlue);
constexpr double kCrRange = 2 * (1 - kRed);

std::uint8_t byte(double value)
{
    return static_cast<std::uint8_t>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
}

} // namespace

std::array<std::uint8_t, 3> planeValues(const Color& color, Layout layout)
{
    if (layout == Layout::Rgb) {
        return {byte(255 * color.red), byte(255 * color.green), byte(255 * color.blue)};
    }
    const double luma = kRed * color.red + kGreen * color.green + kBlue * color.blue;
    return {
        byte(16 + 219 * luma),
        byte(128 + 224 * (color.blue - luma) / kCbRange),
        byte(128 + 224 * (color.red - luma) / kCrRange)};
}

Color colorOfPlanes(const std::array<std::uint8_t, 3>& values, Layout layout)
{
    if (layout == Layout::Rgb) {
        return {values[0] / 255.0, values[1] / 255.0, values[2] / 255.0, 1};
    }
    const double luma = (values[0] - 16) / 219.0;
    const double blue = luma + kCbRange * (values[1] - 128) / 224.0;
    const double red = luma + kCrRange * (values[2] - 128) / 224.0;
    const double green = (luma - kRed * red - kBlue * blue) / kGreen;
    return {std::clamp(red, 0.0, 1.0), std::clamp(green, 0.0, 1.0), std::clamp(blue, 0.0, 1.0), 1};
}

} // namespace zento
