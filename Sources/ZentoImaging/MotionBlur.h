#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/Plane.h"
#include "ZentoImaging/Picture.h"

#include <cstdint>

namespace zento {

// What a moving camera does to a picture, in place. Beyond its edges a plane goes on with its last
// sample, so nothing darkens there, and an even area stays as it is. No two samples that are
// averaged lie more than about one sample apart along the line, and each is interpolated: there are
// no ghosts or steps. The same bytes on every processor.
//
// Threading: free functions over the caller's memory.

/// Averages every sample over the straight line from -reach to +reach around it, all parts of the
/// line alike: a blur of radius r along an angle is a reach of r (cos, sin), and the line is 2 r
/// long. In samples. A reach below 0.05 on both axes does nothing.
void directionalBlur(Plane<std::uint8_t> plane, Vec2 reach);

/// The same for all planes of a picture, in pixels.
void directionalBlur(const PictureView& picture, Vec2 reach);

/// Averages every sample over the part of its ray from the centre that is `stretch` times as long
/// as it is away, half of it towards the centre: at distance d from d e^(-stretch/2) to
/// d e^(+stretch/2). The centre stays sharp. `center` in samples; `stretch` in [0, 1].
void zoomBlur(Plane<std::uint8_t> plane, Vec2 center, double stretch);

/// The same for all planes of a picture, centre in pixels.
void zoomBlur(const PictureView& picture, Vec2 center, double stretch);

} // namespace zento
