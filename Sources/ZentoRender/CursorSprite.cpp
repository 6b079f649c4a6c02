#include "ZentoRender/CursorSprite.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace zento::CursorSprite {
namespace {

constexpr double kUnitsPerDesignUnit = 8; // the shapes below are in design units
constexpr Color kOutline = {1, 1, 1, 1};
constexpr Color kInk = {0, 0, 0, 1};

/// A shape, outlined in white and filled with black, so that it is seen on everything.
struct Piece {
    Path path;
    double outlineWidth = 0;
};

std::vector<Piece> arrow()
{
    constexpr std::array<Vec2, 7> kCorners = {
        {{2, 2}, {2, 28.6}, {8.2, 22.8}, {12.2, 32.2}, {16.4, 30.4}, {12.4, 21}, {20.8, 21}}};
    return {{Path().polygon(kCorners), 3.2}};
}

std::vector<Piece> iBeam()
{
    constexpr double kRadius = 1;
    return {
        {Path().roundedRect({8.4, 3, 3.2, 30}, kRadius), 2.4},
        {Path().roundedRect({3.5, 2, 13, 3}, kRadius), 2.4},
        {Path().roundedRect({3.5, 31, 13, 3}, kRadius), 2.4}};
}

/// Finger, palm, thumb and side finger; where they overlap they are one.
std::vector<Piece> pointingHand()
{
    Path hand;
    hand.roundedRect({10.8, 2, 5.4, 17}, 2.7);
    for (const Rect& part :
         {Rect{5, 13.5, 16.4, 17}, Rect{2.4, 17, 6.2, 10.5}, Rect{16.2, 11.5, 4.6, 9}})
        hand.roundedRect(part, 0.42 * std::min(part.w, part.h));
    return {{hand, 3.2}};
}

std::vector<Piece> pieces(Shape shape)
{
    switch (shape) {
    case Shape::IBeam:
        return iBeam();
    case Shape::PointingHand:
        return pointingHand();
    case Shape::Arrow:
        break;
    }
    return arrow();
}

} // namespace

Shape shape(std::string_view style)
{
    if (style == "iBeam")
        return Shape::IBeam;
    if (style == "pointingHand")
        return Shape::PointingHand;
    return Shape::Arrow;
}

Vec2 size(Shape shape)
{
    switch (shape) {
    case Shape::IBeam:
        return {160, 288};
    case Shape::PointingHand:
        return {208, 288};
    case Shape::Arrow:
        break;
    }
    return {192, 288};
}

Vec2 hotspot(Shape shape)
{
    switch (shape) {
    case Shape::IBeam:
        return {0.5, 0.5};
    case Shape::PointingHand:
        return {0.52, 0.05};
    case Shape::Arrow:
        break;
    }
    return {0.08, 0.05};
}

void draw(Canvas& canvas, Shape shape, Vec2 origin, double height)
{
    const CanvasScope scope(canvas);
    const double pixels = height / size(shape).y * kUnitsPerDesignUnit;
    canvas.translate(origin);
    canvas.scale(pixels, pixels);
    for (const Piece& piece : pieces(shape)) {
        canvas.stroke(piece.path, {.width = piece.outlineWidth, .join = LineJoin::Round}, kOutline);
        canvas.fill(piece.path, kInk);
    }
}

} // namespace zento::CursorSprite
