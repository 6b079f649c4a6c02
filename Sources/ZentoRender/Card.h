#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoRender/CameraRig.h"

namespace zento {

/// The recording on the canvas, as the camera shows it.
///
/// Canvas coordinates are output pixels with the origin at the top-left and y down; everything in
/// this module is drawn in them. A sample's centre lies at half a pixel.
struct Card {
    Vec2 origin;      // top-left corner of the scaled source; may be negative
    double scale = 1; // output pixels per source pixel
    double w = 0;     // output pixels
    double h = 0;

    Vec2 toOutput(Vec2 source) const
    {
        return {origin.x + source.x * scale, origin.y + source.y * scale};
    }

    bool operator==(const Card&) const = default;
};

/// Where the card of a source of that size lies for a camera.
///
/// On each axis by itself: a card below 96 % of the canvas stays centred, one above 104 % follows
/// the camera up to the canvas's edges, and in between the two positions are blended, so that a
/// zoom starts without a jump.
Card cardFor(
    const CameraRig::State& camera,
    const OutputSpec& output,
    const StyleSpec& style,
    Vec2 sourceSize);

} // namespace zento
