#include "ZentoRender/Motion.h"

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

constexpr double kCut = 0.5; // seconds of the source
constexpr double kLeastScale = 1e-6;

constexpr double kLeastMove = 1.2; // pixels
constexpr double kLeastZoom = 1.5;
constexpr double kBlurPerMove = 0.9;
constexpr double kMostRadius = 18; // pixels
constexpr double kMostSmear = 8;

} // namespace

std::optional<Motion> motionSince(
    const std::optional<ShownCard>& previous, const ShownCard& current, Vec2 center, double outH)
{
    if (!previous || !(current.sourceTime - previous->sourceTime < kCut))
        return std::nullopt;
    const Vec2 now = current.card.toOutput(center);
    const Vec2 before = previous->card.toOutput(center);
    const double grown = current.card.scale - previous->card.scale;
    return Motion{
        .dx = now.x - before.x,
        .dy = now.y - before.y,
        .zoomPx = grown / std::max(current.card.scale, kLeastScale) * outH / 3};
}

CardBlur cardBlur(const Motion& motion, double outH)
{
    CardBlur blur;
    const double length = std::hypot(motion.dx, motion.dy);
    if (length > kLeastMove && std::isfinite(length)) {
        const double radius = std::min(length * kBlurPerMove, kMostRadius);
        blur.reach = {radius * motion.dx / length, radius * motion.dy / length};
    }
    if (motion.zoomPx > kLeastZoom)
        blur.stretch = std::min(motion.zoomPx * kBlurPerMove, kMostSmear) / (outH / 3);
    return blur;
}

} // namespace zento
