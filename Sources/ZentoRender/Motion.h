#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoRender/Card.h"

#include <optional>

namespace zento {

/// How the camera moved since the frame before, as the canvas shows it.
struct Motion {
    double dx = 0; // of what lies in the camera's centre, canvas pixels
    double dy = 0;
    double zoomPx = 0; // how far a place a third of the canvas height off the centre moved away
                       // from it, pixels; negative when zooming out
    bool operator==(const Motion&) const = default;
};

/// What a frame hands on to the next for that.
struct ShownCard {
    double sourceTime = 0; // seconds
    Card card;
};

/// Absent after nothing and after a cut: half a second of the source or more is left out. A step
/// back in time is no cut. `center` is the camera's in the current frame, source pixels.
std::optional<Motion> motionSince(
    const std::optional<ShownCard>& previous, const ShownCard& current, Vec2 center, double outH);

/// The blur of the recording in one frame.
struct CardBlur {
    Vec2 reach;         // of the directional blur, canvas pixels; zero is none
    double stretch = 0; // of the zoom blur around the middle of the canvas; zero is none

    bool isNone() const { return *this == CardBlur{}; }
    bool operator==(const CardBlur&) const = default;
};

/// A move of more than 1.2 pixels is blurred along its way, a zoom in of more than 1.5 along the
/// rays from the middle; a zoom out is not.
///
/// The directional blur has 0.9 times the move as its radius, up to 18 pixels. The zoom blur smears
/// a place a third of the canvas height off the middle over 0.9 times `zoomPx`, up to 8 pixels, and
/// all others in proportion to their distance.
CardBlur cardBlur(const Motion& motion, double outH);

} // namespace zento
