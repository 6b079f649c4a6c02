#include "ZentoRender/FrameRecipe.h"

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

constexpr double kGrid = 1024; // steps in a pixel
constexpr double kInvisible = 0.01;

double snapped(double position)
{
    return std::round(position * kGrid) / kGrid;
}

/// Snaps the edges, so that what touches stays touching.
Rect snapped(Rect rect)
{
    const double x = snapped(rect.x);
    const double y = snapped(rect.y);
    return {x, y, snapped(rect.x + rect.w) - x, snapped(rect.y + rect.h) - y};
}

Vec2 snapped(Vec2 place)
{
    return {snapped(place.x), snapped(place.y)};
}

FrameRecipe::Ring rippleRing(const Ripple& ripple, const Card& card, double outH, double zoom)
{
    const double largest = outH * 0.055 * (0.7 + 0.3 * zoom);
    const double q = std::clamp(ripple.progress, 0.0, 1.0);
    const double ease = 1 - std::pow(1 - q, 3);
    return {
        .center = snapped(card.toOutput(ripple.pos)),
        .radius = snapped(largest * (0.25 + 0.75 * ease)),
        .alpha = (1 - ripple.progress) * 0.55};
}

/// The size of a pointer of the given share of the canvas height. It grows with the camera, but
/// less than the picture does.
double pointerSize(double share, double outH, const StyleSpec& style, double zoom)
{
    return (outH * share) * (style.cursorScale * 0.5) * std::pow(zoom, 0.4);
}

/// A white disc and its black halo.
std::vector<FrameRecipe::Disc> pointerDiscs(const CursorState& cursor, Vec2 tip, double size)
{
    const double diameter = size * (1 + 0.35 * cursor.clickPulse); // it swells on a click
    return {
        {.center = snapped(tip),
         .radius = snapped(diameter * (0.5 + 0.08)),
         .color = Color::gray(0, 0.35 * cursor.alpha)},
        {.center = snapped(tip),
         .radius = snapped(diameter * 0.5),
         .color = Color::gray(1, 0.85 * cursor.alpha)}};
}

FrameRecipe::Pointer pointerSprite(const CursorState& cursor, Vec2 tip, double size)
{
    const CursorSprite::Shape shape = CursorSprite::shape(cursor.style);
    const Vec2 units = CursorSprite::size(shape);
    const Vec2 hotspot = CursorSprite::hotspot(shape);
    const double h = (1 - 0.14 * cursor.clickPulse) * size; // it is pressed on a click
    const double w = h / units.y * units.x;
    return {
        .shape = shape,
        .origin = snapped(Vec2{tip.x - hotspot.x * w, tip.y - hotspot.y * h}),
        .height = snapped(h),
        .alpha = cursor.alpha};
}

} // namespace

FrameRecipe frameRecipe(
    const FrameLayers& layers, const OutputSpec& output, const StyleSpec& style, Vec2 sourceSize)
{
    const double outH = output.height;
    const double zoom = layers.camera.zoom;
    const Card card = cardFor(layers.camera, output, style, sourceSize);
    FrameRecipe recipe{.card = snapped(Rect{card.origin.x, card.origin.y, card.w, card.h})};
    if (style.motionBlur && layers.motion)
        recipe.blur = cardBlur(*layers.motion, outH);
    if (layers.webcam)
        recipe.webcam = webcamBubble(*layers.webcam, output);
    recipe.texts = textOverlays(layers.keystroke, layers.caption, layers.chapter);

    for (const Ripple& ripple : layers.ripples)
        recipe.rings.push_back(rippleRing(ripple, card, outH, zoom));
    if (!layers.cursor || layers.cursor->alpha <= kInvisible || style.cursorStyle == "hidden")
        return recipe;
    if (!(style.cursorScale > 0))
        return recipe;
    const CursorState& cursor = *layers.cursor;
    const Vec2 tip = card.toOutput(cursor.pos);
    if (style.cursorStyle == "circle")
        recipe.discs = pointerDiscs(cursor, tip, pointerSize(0.034, outH, style, zoom));
    else
        recipe.pointer = pointerSprite(cursor, tip, pointerSize(0.052, outH, style, zoom));
    return recipe;
}

} // namespace zento
