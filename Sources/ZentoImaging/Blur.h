#pragma once

#include "ZentoCore/Plane.h"
#include "ZentoImaging/Picture.h"

#include <cstdint>

namespace zento {

/// What a blur finds outside the plane.
enum class BlurEdge {
    Clamp, // the plane's edge goes on
    Zero,
};

/// Gaussian blur in place, sigma in samples, cut off at three sigma. A sigma below 0.1 does
/// nothing.
///
/// Threading: free functions over the caller's memory.
void gaussianBlur(Plane<std::uint8_t> plane, double sigma, BlurEdge edge = BlurEdge::Clamp);

/// The same for all planes of a picture, sigma in pixels.
void gaussianBlur(const PictureView& picture, double sigma);

} // namespace zento
