#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/Plane.h"
#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Scale.h"

#include <cstdint>

namespace zento {

/// Draws pictures of changing sizes scaled into a frame of a fixed size, from the top left, over
/// black: as `CaptureSpace` says of a window.
///
/// Threading: one thread at a time.
class FittedPicture {
public:
    /// `pixels`: rows of `width`, B, G, R and x. `scale`: from the source to the frame.
    void draw(const BgraView& source, double scale, std::uint32_t* pixels, int width, int height);

private:
    PictureScaler m_scaler;
    Picture m_scaled; // of the frame's size, black where the source is not
    Vec2 m_scaledSize;
};

} // namespace zento
