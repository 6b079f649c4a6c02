#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoImaging/Canvas.h"

#include <string_view>

/// The shapes of the pointer. They are drawn here and not taken from the desktop, so that a film
/// looks the same everywhere.
namespace zento::CursorSprite {

enum class Shape { Arrow, IBeam, PointingHand };

/// The sprite of a `CursorSample::style`; a style not known is the arrow.
Shape shape(std::string_view style);

/// The size of a sprite in its own units, to be scaled to the pixels it takes in a frame.
Vec2 size(Shape shape);

/// Where a pointer points, as a fraction of its sprite from the top-left corner.
Vec2 hotspot(Shape shape);

/// Draws a sprite with its top-left corner at `origin` and `height` pixels high: outlines, not a
/// scaled picture, so that it is crisp at every size.
void draw(Canvas& canvas, Shape shape, Vec2 origin, double height);

} // namespace zento::CursorSprite
