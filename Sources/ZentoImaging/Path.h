#pragma once

#include "ZentoCore/Geometry.h"

#include <span>
#include <variant>
#include <vector>

namespace zento {

/// The outline of a shape, in the units of the canvas it is drawn on (pixels unless scaled), y
/// down. Several closed pieces may be added: what is inside is told by the `FillRule`.
class Path {
public:
    struct MoveTo {
        Vec2 p;
        bool operator==(const MoveTo&) const = default;
    };
    struct LineTo {
        Vec2 p;
        bool operator==(const LineTo&) const = default;
    };
    struct CubicTo {
        Vec2 control1;
        Vec2 control2;
        Vec2 p;
        bool operator==(const CubicTo&) const = default;
    };
    struct Close {
        bool operator==(const Close&) const = default;
    };
    using Step = std::variant<MoveTo, LineTo, CubicTo, Close>;

    Path& moveTo(Vec2 p);
    Path& lineTo(Vec2 p);
    Path& cubicTo(Vec2 control1, Vec2 control2, Vec2 p);
    Path& close();

    // Each of these adds a piece of its own.
    Path& line(Vec2 from, Vec2 to);
    Path& polygon(std::span<const Vec2> corners); // closed
    Path& rect(const Rect& r);
    Path& roundedRect(const Rect& r, double radius); // radius limited to half the shorter side
    Path& ellipse(const Rect& bounds);
    Path& circle(Vec2 center, double radius);

    const std::vector<Step>& steps() const { return m_steps; }
    bool isEmpty() const { return m_steps.empty(); }

    bool operator==(const Path&) const = default;

private:
    std::vector<Step> m_steps;
};

enum class FillRule { Winding, EvenOdd };
enum class LineJoin { Miter, Round, Bevel };
enum class LineCap { Butt, Round, Square };

struct Stroke {
    double width = 1; // (0, ∞), in the units of the path
    LineJoin join = LineJoin::Miter;
    LineCap cap = LineCap::Butt;
};

} // namespace zento
