#include "ZentoRender/OverlayPainter.h"

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Shapes.h"

#include <cmath>

namespace zento {
namespace {

// A ripple is an ellipse in (24, 24, 464, 464) of a square of 512, stroked 28 wide.
constexpr double kRingInner = (232.0 - 14) / 256;
constexpr double kRingWidth = 28.0 / 256;

RoundedRect circle(Vec2 center, double radius)
{
    return {{center.x - radius, center.y - radius, 2 * radius, 2 * radius}, radius};
}

/// The sprite drawn anew at its size and sub-pixel place. The canvas begins at an even pixel, where
/// a chroma sample lies.
PlacedSprite placedPointer(const FrameRecipe::Pointer& pointer, Layout layout)
{
    const Vec2 units = CursorSprite::size(pointer.shape);
    const double width = pointer.height / units.y * units.x;
    const Vec2 corner = {
        2 * std::floor(pointer.origin.x / 2), 2 * std::floor(pointer.origin.y / 2)};
    const Vec2 inside = {pointer.origin.x - corner.x, pointer.origin.y - corner.y};
    Canvas canvas(
        static_cast<int>(std::ceil(inside.x + width)),
        static_cast<int>(std::ceil(inside.y + pointer.height)));
    CursorSprite::draw(canvas, pointer.shape, inside, pointer.height);
    return {Sprite(canvas, layout), corner};
}

} // namespace

void OverlayPainter::paint(
    const FrameRecipe& recipe, const std::optional<WebcamLayer>& webcam, const PictureView& canvas)
{
    for (const FrameRecipe::Ring& ring : recipe.rings)
        fillRing(
            canvas,
            circle(ring.center, ring.radius * kRingInner),
            ring.radius * kRingWidth,
            Color::gray(1, ring.alpha));
    for (const FrameRecipe::Disc& disc : recipe.discs)
        fillRoundedRect(canvas, circle(disc.center, disc.radius), disc.color);
    if (recipe.pointer)
        paintPointer(*recipe.pointer, canvas);
    if (recipe.webcam && webcam)
        m_webcam.paint(*recipe.webcam, webcam->frame, canvas);
    m_texts.paint(recipe.texts, canvas);
}

void OverlayPainter::paintPointer(const FrameRecipe::Pointer& pointer, const PictureView& canvas)
{
    FrameRecipe::Pointer opaque = pointer;
    opaque.alpha = 1;
    if (m_drawnPointer != opaque) {
        m_pointer = placedPointer(opaque, canvas.layout);
        m_drawnPointer = opaque;
    }
    m_pointer.draw(canvas, pointer.alpha);
}

} // namespace zento
