#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoImaging/Color.h"
#include "ZentoMedia/VideoFrame.h"
#include "ZentoRender/Card.h"
#include "ZentoRender/CursorSprite.h"
#include "ZentoRender/FrameValues.h"
#include "ZentoRender/Motion.h"
#include "ZentoRender/TextOverlay.h"
#include "ZentoRender/WebcamBubble.h"

#include <optional>
#include <vector>

namespace zento {

/// What is put together into one frame. What is absent is not drawn.
struct FrameLayers {
    VideoFrame source;
    CameraRig::State camera;
    std::optional<CursorState> cursor;
    std::vector<Ripple> ripples;
    std::optional<WebcamLayer> webcam;
    std::optional<Motion> motion;
    std::optional<FrameText> keystroke;
    std::optional<FrameText> caption;
    std::optional<FrameText> chapter;
};

/// One frame worked out: what is drawn where, on the canvas. Two frames with equal recipes and
/// equal sources, screen and webcam, have the same pixels, so the second need not be drawn.
///
/// Positions and sizes are multiples of 1/1024 pixel. No eye sees the difference, and it lets the
/// camera's springs, which approach their target for ever, come to rest.
struct FrameRecipe {
    struct Ring { // white, of a click
        Vec2 center;
        double radius = 0; // of the square it is drawn in; the ring itself is a little smaller
        double alpha = 1;
        bool operator==(const Ring&) const = default;
    };
    struct Disc { // of the circle pointer
        Vec2 center;
        double radius = 0;
        Color color;
        bool operator==(const Disc&) const = default;
    };
    struct Pointer {
        CursorSprite::Shape shape = CursorSprite::Shape::Arrow;
        Vec2 origin; // the top-left corner of its sprite
        double height = 0;
        double alpha = 1;
        bool operator==(const Pointer&) const = default;
    };

    Rect card;     // the whole source
    CardBlur blur; // of the source within the card
    // From bottom to top:
    std::vector<Ring> rings;
    std::vector<Disc> discs;
    std::optional<Pointer> pointer;
    std::optional<WebcamBubble> webcam;
    std::vector<TextOverlay> texts;
    bool operator==(const FrameRecipe&) const = default;
};

/// Pure: the source's samples are not looked at. `sourceSize` is in pixels.
FrameRecipe frameRecipe(
    const FrameLayers& layers, const OutputSpec& output, const StyleSpec& style, Vec2 sourceSize);

} // namespace zento
