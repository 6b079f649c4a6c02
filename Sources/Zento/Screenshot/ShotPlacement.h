#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoRender/Screenshot/ShotComposer.h"

#include <optional>

namespace zento {

/// Where a composed screenshot stands in a view, and how places of the view map to pixels of the
/// whole image.
struct ShotPlacement {
    Rect kept;        // pixels of the image: all that the crop leaves
    double margin;    // pixels of the image, on every side
    Rect picture;     // points of the view: the whole composed picture
    double scale = 1; // points of the view for a pixel of the image

    /// Fits the picture into a view of that size, never larger than a pixel of the image on
    /// `pointsPerPixel` points of the view.
    ShotPlacement(
        Vec2 imageSize,
        const std::optional<Rect>& crop,
        const ShotStyle& style,
        Vec2 viewSize,
        double pointsPerPixel);

    Vec2 toRaw(Vec2 point) const;    // of the view, to the image
    Vec2 toCanvas(Vec2 pixel) const; // of the image, to the view
    Rect toCanvas(const Rect& pixels) const;
};

} // namespace zento
