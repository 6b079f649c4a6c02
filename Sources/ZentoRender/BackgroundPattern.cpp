#include "ZentoRender/BackgroundPattern.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zento::BackgroundRenderer {
namespace {

/// The ink of a pattern: areas, or lines of a width.
struct Ink {
    Path path;
    double lineWidth = 0; // 0: filled
};

/// The size of the canvas and of a cell.
struct Cells {
    double w = 0;
    double h = 0;
    double t = 0;

    int columns() const { return static_cast<int>(w / t) + 2; }
    int rows() const { return static_cast<int>(h / t) + 2; }

    template <typename Visit>
    void forEachCell(Visit visit) const
    {
        for (int i = 0; i < columns(); ++i)
            for (int j = 0; j < rows(); ++j)
                visit(i, j);
    }
};

Ink dots(const Cells& a)
{
    Ink ink;
    a.forEachCell([&](int i, int j) { ink.path.circle({a.t * i, a.t * j}, 0.08 * a.t); });
    return ink;
}

Ink grid(const Cells& a)
{
    Ink ink{.path = {}, .lineWidth = 0.02 * a.t};
    for (int i = 0; i < a.columns(); ++i)
        ink.path.line({a.t * i, 0}, {a.t * i, a.h});
    for (int j = 0; j < a.rows(); ++j)
        ink.path.line({0, a.t * j}, {a.w, a.t * j});
    return ink;
}

Ink diagonal(const Cells& a)
{
    Ink ink{.path = {}, .lineWidth = 0.06 * a.t};
    for (double x = -a.h; x < a.w + a.h; x += a.t)
        ink.path.line({x, 0}, {x + a.h, a.h});
    return ink;
}

Ink waves(const Cells& a)
{
    Ink ink{.path = {}, .lineWidth = 0.05 * a.t};
    for (double y = -a.t; y < a.h + a.t; y += 0.6 * a.t) {
        ink.path.moveTo({0, y});
        for (double x = 0; x < a.w; x += a.t)
            ink.path.cubicTo(
                {x + 0.25 * a.t, y + 0.4 * a.t}, {x + 0.75 * a.t, y - 0.4 * a.t}, {x + a.t, y});
    }
    return ink;
}

std::array<Vec2, 6> hexagon(Vec2 center, double radius)
{
    std::array<Vec2, 6> corners;
    for (std::size_t k = 0; k < corners.size(); ++k) {
        const double angle = (30 + 60 * static_cast<double>(k)) * std::numbers::pi / 180;
        corners[k] = {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
    }
    return corners;
}

Ink hexagons(const Cells& a)
{
    Ink ink{.path = {}, .lineWidth = 0.03 * a.t};
    const double radius = 0.5 * a.t;
    const double step = std::numbers::sqrt3 * radius;
    bool odd = false;
    for (double y = 0; y < a.h + radius; y += 1.5 * radius, odd = !odd)
        for (double x = odd ? 0.5 * step : 0; x < a.w + step; x += step)
            ink.path.polygon(hexagon({x, y}, radius));
    return ink;
}

Ink rings(const Cells& a)
{
    Ink ink{.path = {}, .lineWidth = 0.03 * a.t};
    for (double radius = 0.5 * a.t; radius < 0.5 * std::hypot(a.w, a.h); radius += a.t)
        ink.path.circle({0.5 * a.w, 0.5 * a.h}, radius);
    return ink;
}

Ink checker(const Cells& a)
{
    Ink ink;
    a.forEachCell([&](int i, int j) {
        if ((i + j) % 2 == 0)
            ink.path.rect({a.t * i, a.t * j, a.t, a.t});
    });
    return ink;
}

Ink crosses(const Cells& a)
{
    Ink ink{.path = {}, .lineWidth = 0.05 * a.t};
    const double arm = 0.14 * a.t;
    a.forEachCell([&](int i, int j) {
        const Vec2 c = {a.t * i, a.t * j};
        ink.path.line({c.x - arm, c.y}, {c.x + arm, c.y});
        ink.path.line({c.x, c.y - arm}, {c.x, c.y + arm});
    });
    return ink;
}

/// Dots that grow towards the lower right of the picture.
Ink halftone(const Cells& a)
{
    Ink ink;
    a.forEachCell([&](int i, int j) {
        const Vec2 c = {a.t * i, a.t * j};
        const double growth = (c.x / a.w + 1 - c.y / a.h) * 0.5;
        const double radius = a.t * (growth * 0.32 + 0.05);
        if (radius > 0) // cells above the canvas
            ink.path.circle(c, radius);
    });
    return ink;
}

struct Kind {
    std::string_view name;
    Ink (*ink)(const Cells&);
};
constexpr std::array<Kind, 9> kKinds = {
    {{"dots", dots},
     {"grid", grid},
     {"diagonal", diagonal},
     {"waves", waves},
     {"hex", hexagons},
     {"rings", rings},
     {"checker", checker},
     {"cross", crosses},
     {"halftone", halftone}}};

} // namespace

void drawPattern(
    std::string_view kind, Canvas& canvas, double w, double h, const Color& ink, double tile)
{
    const auto found = std::ranges::find(kKinds, kind, &Kind::name);
    if (found == kKinds.end())
        return;
    const Ink drawing = found->ink({w, h, tile});
    if (drawing.lineWidth > 0)
        canvas.stroke(drawing.path, {.width = std::max(drawing.lineWidth, 1.0)}, ink);
    else
        canvas.fill(drawing.path, ink);
}

} // namespace zento::BackgroundRenderer
