#include "ZentoImaging/Blur.h"

#include "ZentoImaging/FixedWeights.hpp"
#include "ZentoImaging/Kernels/ScaleRows.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace zento {

namespace {

constexpr double kLeastSigma = 0.1;

std::vector<std::int16_t> gaussianWeights(double sigma)
{
    const int radius = std::max(1, int(std::ceil(3 * sigma)));
    std::vector<double> exact;
    for (int i = -radius; i <= radius; ++i) {
        exact.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
    }
    return fixedWeights(exact);
}

} // namespace

void gaussianBlur(Plane<std::uint8_t> plane, double sigma, BlurEdge edge)
{
    if (sigma < kLeastSigma || plane.width == 0 || plane.height == 0) {
        return;
    }
    const std::vector<std::int16_t> weights = gaussianWeights(sigma);
    const int taps = int(weights.size());
    const int radius = taps / 2;
    const auto width = std::size_t(plane.width);
    std::vector<std::uint8_t> source(width * std::size_t(plane.height));
    for (int y = 0; y < plane.height; ++y) {
        std::memcpy(&source[std::size_t(y) * width], plane.row(y), width);
    }
    const std::vector<std::uint8_t> nothing(width);
    std::vector<std::int16_t> middle(width + 2 * std::size_t(radius));
    std::vector<const std::uint8_t*> rows(std::size_t(taps), nullptr);
    std::vector<const std::int16_t*> shifted(std::size_t(taps), nullptr);
    for (int t = 0; t < taps; ++t) {
        shifted[std::size_t(t)] = middle.data() + t;
    }
    for (int y = 0; y < plane.height; ++y) {
        for (int t = 0; t < taps; ++t) {
            const int line = y + t - radius;
            const int inside = std::clamp(line, 0, plane.height - 1);
            rows[std::size_t(t)] = line == inside || edge == BlurEdge::Clamp
                                       ? &source[std::size_t(inside) * width]
                                       : nothing.data();
        }
        std::int16_t* center = middle.data() + radius;
        kernel::weightRows(rows.data(), weights.data(), taps, width, center);
        if (edge == BlurEdge::Clamp) {
            std::fill(middle.data(), center, center[0]);
            std::fill_n(center + width, radius, center[width - 1]);
        }
        kernel::weightRowsToBytes(shifted.data(), weights.data(), taps, width, plane.row(y));
    }
}

void gaussianBlur(const PictureView& picture, double sigma)
{
    for (std::size_t i = 0; i < 3; ++i) {
        gaussianBlur(picture.planes[i], sigma * picture.grid(i).perPixel.x);
    }
}

} // namespace zento
