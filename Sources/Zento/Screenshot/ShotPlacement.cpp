#include "Zento/Screenshot/ShotPlacement.h"

#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <algorithm>
#include <cmath>

namespace zento {

ShotPlacement::ShotPlacement(
    Vec2 imageSize,
    const std::optional<Rect>& crop,
    const ShotStyle& style,
    Vec2 viewSize,
    double pointsPerPixel)
    : kept(AnnotationRenderer::keptArea(crop, imageSize))
    , margin(ShotComposer::border(style, kept.h))
{
    // The left and the top margin are whole pixels: see `beautify`.
    const double width = std::floor(kept.w + 2 * margin);
    const double height = std::floor(kept.h + 2 * margin);
    margin = std::floor(margin);
    scale = std::min({viewSize.x / width, viewSize.y / height, pointsPerPixel});
    picture.w = width * scale;
    picture.h = height * scale;
    picture.x = (viewSize.x - picture.w) / 2;
    picture.y = (viewSize.y - picture.h) / 2;
}

Vec2 ShotPlacement::toRaw(Vec2 point) const
{
    return {
        (point.x - picture.x) / scale - margin + kept.x,
        (point.y - picture.y) / scale - margin + kept.y};
}

Vec2 ShotPlacement::toCanvas(Vec2 pixel) const
{
    return {
        (pixel.x - kept.x + margin) * scale + picture.x,
        (pixel.y - kept.y + margin) * scale + picture.y};
}

Rect ShotPlacement::toCanvas(const Rect& pixels) const
{
    const Vec2 corner = toCanvas(Vec2{pixels.x, pixels.y});
    return {corner.x, corner.y, pixels.w * scale, pixels.h * scale};
}

} // namespace zento
