#include "ZentoRender/WebcamBubble.h"

#include <algorithm>
#include <string_view>

namespace zento {
namespace {

constexpr double kMargin = 0.035; // of the canvas height

/// The middle square, made smaller by the zoom, down to one pixel.
Rect croppedSquare(VideoSize size, double zoom)
{
    const double whole = std::min(size.width, size.height);
    const double side = zoom > 1 ? std::max(whole / zoom, 1.0) : whole;
    return {(size.width - side) / 2, (size.height - side) / 2, side, side};
}

} // namespace

std::optional<WebcamBubble> webcamBubble(const WebcamLayer& webcam, const OutputSpec& output)
{
    const WebcamPlan& plan = webcam.plan;
    const double outH = output.height;
    const double side = outH * std::min(plan.size, 1.0);
    if (!(side >= 1))
        return std::nullopt;
    const double margin = outH * kMargin;
    const std::string_view corner = plan.corner;
    const bool isRight = corner.ends_with("Right") || corner.ends_with("right");
    const double x = isRight ? output.width - margin - side : margin;
    const double y = corner.starts_with("top") ? margin : outH - margin - side;
    const double roundness = plan.roundness > 0 ? std::min(plan.roundness, 0.5) : 0;
    return WebcamBubble{
        .shape = {{x, y, side, side}, side * roundness},
        .crop = croppedSquare(webcam.frame.size(), plan.zoom),
        .isMirrored = plan.mirror,
        .hasShadow = plan.shadow,
        .hasRing = plan.ring,
        .isEnhanced = plan.enhance,
        .hasBlurredBackground = plan.blurBackground,
        .frame = webcam.frame.identity()};
}

} // namespace zento
