#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoMedia/VideoFrame.h"

#include <array>
#include <cstdint>
#include <functional>

namespace zento {

/// Gamma-coded red, green and blue in [0, 1].
using RgbValue = std::array<double, 3>;

/// Y', Cb, Cr of BT.709 as limited-range values of 8 bits, not rounded.
std::array<double, 3> limitedRange(const RgbValue& color);

/// A picture given as a function of a place in its pixels.
using Painting = std::function<RgbValue(Vec2)>;

enum class SourceFormat { TenBits422, EightBits420 };

/// Samples a painting where the samples of a decoded frame lie.
VideoFrame sampled(
    const Painting& painting,
    VideoSize size,
    SourceFormat format = SourceFormat::TenBits422,
    std::uint64_t identity = 1);

} // namespace zento
