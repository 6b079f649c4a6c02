#include "ZentoRender/WebcamPainter.h"

#include "ZentoImaging/Scale.h"
#include "ZentoImaging/Shapes.h"
#include "ZentoRender/WebcamEffects.h"

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

// Of the bubble's side.
constexpr double kShadowOffset = 0.04;
constexpr double kShadowSigma = 0.05;
constexpr double kRingWidth = 0.014;
constexpr double kBackgroundSigma = 0.035;

constexpr double kShadowOpacity = 0.45;
constexpr double kRingOpacity = 0.9;

constexpr double kLeastSide = 8; // pixels; of less than that no background can be told

// What a scaler does in one step.
constexpr double kLeastScale = 0.02;
constexpr double kMostScale = 16;

/// The whole pixels of the canvas a bubble touches, beginning at even ones, where chroma lies.
Rect pixelBounds(const Rect& rect, const PictureView& canvas)
{
    const double left = 2 * std::floor(std::max(rect.x, 0.0) / 2);
    const double top = 2 * std::floor(std::max(rect.y, 0.0) / 2);
    const double right = std::min(std::ceil(rect.x + rect.w), static_cast<double>(canvas.width));
    const double bottom = std::min(std::ceil(rect.y + rect.h), static_cast<double>(canvas.height));
    return {left, top, right - left, bottom - top};
}

enum class Facing { AsRecorded, Mirrored };

Facing facingOf(const WebcamBubble& bubble)
{
    return bubble.isMirrored ? Facing::Mirrored : Facing::AsRecorded;
}

/// Places what lies in `crop` onto `target`.
PicturePlacement placementOf(const Rect& crop, const Rect& target, Facing facing)
{
    const double scaleX = target.w / crop.w;
    const double scaleY = target.h / crop.h;
    const double y = target.y - crop.y * scaleY;
    if (facing == Facing::Mirrored)
        return {{target.x + target.w + crop.x * scaleX, y}, -scaleX, scaleY};
    return {{target.x - crop.x * scaleX, y}, scaleX, scaleY};
}

/// Fills a picture with a square of a source, which goes onto `target`; around that the source goes
/// on.
template <typename Planes>
void drawSquare(
    const Planes& source,
    const Rect& crop,
    const Rect& target,
    Facing facing,
    const PictureView& picture)
{
    const double scale = target.w / crop.w;
    if (scale < kLeastScale || scale > kMostScale) { // two steps, each the root of it
        const double side = std::clamp(std::round(std::sqrt(target.w * crop.w)), 1.0, 4096.0);
        const Rect middle = {0, 0, side, side};
        Picture between(static_cast<int>(side), static_cast<int>(side), Layout::Yuv420);
        drawSquare(source, crop, middle, Facing::AsRecorded, between.view());
        drawSquare(std::as_const(between).yuv(), middle, target, facing, picture);
        return;
    }
    const Rect all = {
        0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)};
    PictureScaler scaler;
    drawScaled(scaler, source, placementOf(crop, target, facing), picture, all);
}

void drawSquare(
    const VideoFrame& frame,
    const Rect& crop,
    const Rect& target,
    Facing facing,
    const PictureView& picture)
{
    if (frame.bitDepth() == 8)
        drawSquare(frame.planes8(), crop, target, facing, picture);
    else
        drawSquare(frame.planes10(), crop, target, facing, picture);
}

} // namespace

void WebcamPainter::paint(
    const WebcamBubble& bubble, const VideoFrame& frame, const PictureView& canvas)
{
    const RoundedRect& shape = bubble.shape;
    const double side = shape.rect.w;
    if (bubble.hasShadow) {
        RoundedRect shadow = shape;
        shadow.rect.y += kShadowOffset * side;
        drawShadow(canvas, shadow, kShadowSigma * side, Color::gray(0, kShadowOpacity), m_shadows);
    }
    if (const Rect bounds = pixelBounds(shape.rect, canvas); bounds.w > 0 && bounds.h > 0) {
        if (m_drawn != bubble) {
            preparePicture(bubble, frame, bounds);
            m_drawn = bubble;
        }
        blendThroughShape(
            canvas,
            std::as_const(m_picture).view(),
            static_cast<int>(bounds.x),
            static_cast<int>(bounds.y),
            shape);
    }
    if (bubble.hasRing)
        fillRing(canvas, shape, kRingWidth * side, Color::gray(1, kRingOpacity));
}

void WebcamPainter::preparePicture(
    const WebcamBubble& bubble, const VideoFrame& frame, const Rect& bounds)
{
    const Rect& rect = bubble.shape.rect;
    const Rect target = {rect.x - bounds.x, rect.y - bounds.y, rect.w, rect.h};
    m_picture = Picture(static_cast<int>(bounds.w), static_cast<int>(bounds.h), Layout::Yuv420);
    drawSquare(frame, bubble.crop, target, facingOf(bubble), m_picture.view());
    if (bubble.hasBlurredBackground)
        blurBackground(bubble, frame, target);
    if (bubble.isEnhanced)
        WebcamEffects::enhance(m_picture.view());
}

/// The person is looked for at the network's own size, however small the bubble is.
void WebcamPainter::blurBackground(
    const WebcamBubble& bubble, const VideoFrame& frame, const Rect& target)
{
    if (std::min(bubble.crop.w, target.w) <= kLeastSide)
        return;
    constexpr double kSize = PersonMatte::kWorkingSize;
    constexpr Rect kWhole = {0, 0, kSize, kSize};
    Picture seen(PersonMatte::kWorkingSize, PersonMatte::kWorkingSize, Layout::Yuv420);
    drawSquare(frame, bubble.crop, kWhole, Facing::AsRecorded, seen.view());
    if (!m_matte)
        m_matte.emplace();
    const auto matte = m_matte->matte(std::as_const(seen).view());
    if (!matte)
        return;
    WebcamEffects::blurBackground(
        m_picture.view(),
        *matte,
        placementOf(kWhole, target, facingOf(bubble)),
        kBackgroundSigma * target.w);
}

} // namespace zento
