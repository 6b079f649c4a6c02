#include "ZentoRender/WebcamEffects.h"

#include "ZentoImaging/Blend.h"
#include "ZentoImaging/Blur.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <vector>

namespace zento {
namespace {

constexpr double kSaturation = 1.1;
constexpr double kContrast = 1.06;
constexpr double kBrightness = 0.02;
constexpr double kVibrance = 0.18;

std::uint8_t limited(double value, double most)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 16.0, most)));
}

std::uint8_t enhancedLuma(std::uint8_t sample)
{
    const double luma = (sample - 16) / 219.0;
    return limited(16 + 219 * ((luma - 0.5) * kContrast + 0.5 + kBrightness), 235);
}

/// Of R', G', B' that far from their luma, which is what Cb and Cr say.
double saturation(double cb, double cr)
{
    const double blue = 1.8556 * cb;
    const double red = 1.5748 * cr;
    const double green = -(0.0722 * blue + 0.2126 * red) / 0.7152;
    const auto [least, most] = std::minmax({red, green, blue});
    return std::min(most - least, 1.0);
}

std::array<std::uint8_t, 2> enhancedChroma(std::uint8_t cbSample, std::uint8_t crSample)
{
    const double cb = (cbSample - 128) / 224.0 * kSaturation * kContrast;
    const double cr = (crSample - 128) / 224.0 * kSaturation * kContrast;
    const double gain = 1 + kVibrance * (1 - saturation(cb, cr));
    return {limited(128 + 224 * cb * gain, 240), limited(128 + 224 * cr * gain, 240)};
}

} // namespace

void WebcamEffects::blurBackground(
    const PictureView& picture, const Matte& matte, const PicturePlacement& placement, double sigma)
{
    assert(picture.layout == Layout::Yuv420);
    PlaneScaler scaler;
    for (std::size_t p = 0; p < 3; ++p) {
        const Plane<std::uint8_t>& plane = picture.planes[p];
        const auto width = static_cast<std::size_t>(plane.width);
        std::vector<std::uint8_t> sharp;
        for (int y = 0; y < plane.height; ++y)
            sharp.insert(sharp.end(), plane.row(y), plane.row(y) + width);
        gaussianBlur(plane, sigma * picture.grid(p).perPixel.x);

        const auto [x, y] = planePlacement(placement, kFullGrid, picture.grid(p));
        scaler.prepare(
            matte.width,
            matte.height,
            x,
            y,
            {0, plane.width},
            {0, plane.height},
            ScaleFilter::Soft);
        std::vector<std::uint8_t> mask(width);
        for (int row = 0; row < plane.height; ++row) {
            scaler.scaleRow(matte.plane(), row, mask.data());
            std::uint8_t* const out = plane.row(row);
            const std::uint8_t* const above = sharp.data() + static_cast<std::size_t>(row) * width;
            blendMasked(out, out, above, mask.data(), width);
        }
    }
}

void WebcamEffects::enhance(const PictureView& picture)
{
    assert(picture.layout == Layout::Yuv420);
    const auto& [luma, cb, cr] = picture.planes;
    std::array<std::uint8_t, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = enhancedLuma(static_cast<std::uint8_t>(i));
    for (int y = 0; y < luma.height; ++y)
        std::transform(
            luma.row(y), luma.row(y) + luma.width, luma.row(y), [&](std::uint8_t sample) {
                return table[sample];
            });
    for (int y = 0; y < cb.height; ++y)
        for (int x = 0; x < cb.width; ++x) {
            const auto [newCb, newCr] = enhancedChroma(cb.row(y)[x], cr.row(y)[x]);
            cb.row(y)[x] = newCb;
            cr.row(y)[x] = newCr;
        }
}

} // namespace zento
