#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Geometry.h"
#include "ZentoImaging/Canvas.h"

#include <algorithm>
#include <optional>

namespace zento {

/// A part of a frame, drawn on its own.
struct PlacedDrawing {
    Canvas canvas;
    Vec2 origin; // its top-left corner in the frame; a whole pixel
};

/// The part of `place` (whole pixels) that lies in the frame, filled by
/// `draw(Canvas& part, Vec2 origin)`; nothing where none does. So the longest text takes no more
/// memory than a frame.
template <typename Draw>
std::optional<PlacedDrawing> drawVisible(const Rect& place, const OutputSpec& frame, Draw draw)
{
    const Vec2 origin = {std::max(place.x, 0.0), std::max(place.y, 0.0)};
    const double width = std::min<double>(place.x + place.w, frame.width) - origin.x;
    const double height = std::min<double>(place.y + place.h, frame.height) - origin.y;
    if (width < 1 || height < 1)
        return std::nullopt;
    PlacedDrawing drawing = {
        .canvas = Canvas(static_cast<int>(width), static_cast<int>(height)), .origin = origin};
    draw(drawing.canvas, origin);
    return drawing;
}

} // namespace zento
