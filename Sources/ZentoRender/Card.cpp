#include "ZentoRender/Card.h"

#include <algorithm>

namespace zento {
namespace {

/// Output pixels per source pixel at zoom 1.
double baseFit(double outW, double outH, const StyleSpec& style, Vec2 sourceSize)
{
    if (style.fillsCanvas)
        return std::max(outW / sourceSize.x, outH / sourceSize.y);
    const double padding = outH * style.padding; // of the height, on all four sides
    return std::min((outW - 2 * padding) / sourceSize.x, (outH - 2 * padding) / sourceSize.y);
}

double originOnAxis(double out, double size, double center, double scale)
{
    const double follow = out * 0.5 - center * scale;
    const double edge = out - size;
    const double clamped = std::min(std::max(follow, edge), 0.0);
    const double centred = edge * 0.5;
    const double f = std::clamp((size / out - 0.96) / 0.08, 0.0, 1.0);
    const double s = f * f * (3 - 2 * f);
    return centred + (clamped - centred) * s;
}

} // namespace

Card cardFor(
    const CameraRig::State& camera,
    const OutputSpec& output,
    const StyleSpec& style,
    Vec2 sourceSize)
{
    const double outW = output.width;
    const double outH = output.height;
    const double scale = camera.zoom * baseFit(outW, outH, style, sourceSize);
    const double w = sourceSize.x * scale;
    const double h = sourceSize.y * scale;
    return {
        .origin =
            {originOnAxis(outW, w, camera.center.x, scale),
             originOnAxis(outH, h, camera.center.y, scale)},
        .scale = scale,
        .w = w,
        .h = h};
}

} // namespace zento
