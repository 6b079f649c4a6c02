#include "ZentoImaging/Path.h"

#include <algorithm>

namespace zento {

namespace {

// The control distance of a cubic that stands for a quarter of a circle, to 0.03 % of the radius.
constexpr double kQuarter = 0.5522847498307936;

} // namespace

Path& Path::moveTo(Vec2 p)
{
    m_steps.emplace_back(MoveTo{p});
    return *this;
}

Path& Path::lineTo(Vec2 p)
{
    m_steps.emplace_back(LineTo{p});
    return *this;
}

Path& Path::cubicTo(Vec2 control1, Vec2 control2, Vec2 p)
{
    m_steps.emplace_back(CubicTo{control1, control2, p});
    return *this;
}

Path& Path::close()
{
    m_steps.emplace_back(Close{});
    return *this;
}

Path& Path::line(Vec2 from, Vec2 to)
{
    return moveTo(from).lineTo(to);
}

Path& Path::polygon(std::span<const Vec2> corners)
{
    for (std::size_t i = 0; i < corners.size(); ++i) {
        i == 0 ? moveTo(corners[i]) : lineTo(corners[i]);
    }
    return corners.empty() ? *this : close();
}

Path& Path::rect(const Rect& r)
{
    return moveTo({r.x, r.y})
        .lineTo({r.x + r.w, r.y})
        .lineTo({r.x + r.w, r.y + r.h})
        .lineTo({r.x, r.y + r.h})
        .close();
}

Path& Path::roundedRect(const Rect& r, double radius)
{
    const double a = std::clamp(radius, 0.0, std::max(0.0, 0.5 * std::min(r.w, r.h)));
    if (a == 0) {
        return rect(r);
    }
    const double k = a * (1 - kQuarter);
    const double right = r.x + r.w;
    const double bottom = r.y + r.h;
    return moveTo({r.x + a, r.y})
        .lineTo({right - a, r.y})
        .cubicTo({right - k, r.y}, {right, r.y + k}, {right, r.y + a})
        .lineTo({right, bottom - a})
        .cubicTo({right, bottom - k}, {right - k, bottom}, {right - a, bottom})
        .lineTo({r.x + a, bottom})
        .cubicTo({r.x + k, bottom}, {r.x, bottom - k}, {r.x, bottom - a})
        .lineTo({r.x, r.y + a})
        .cubicTo({r.x, r.y + k}, {r.x + k, r.y}, {r.x + a, r.y})
        .close();
}

Path& Path::ellipse(const Rect& bounds)
{
    const Vec2 c = bounds.center();
    const double rx = 0.5 * bounds.w;
    const double ry = 0.5 * bounds.h;
    const double kx = rx * kQuarter;
    const double ky = ry * kQuarter;
    return moveTo({c.x + rx, c.y})
        .cubicTo({c.x + rx, c.y + ky}, {c.x + kx, c.y + ry}, {c.x, c.y + ry})
        .cubicTo({c.x - kx, c.y + ry}, {c.x - rx, c.y + ky}, {c.x - rx, c.y})
        .cubicTo({c.x - rx, c.y - ky}, {c.x - kx, c.y - ry}, {c.x, c.y - ry})
        .cubicTo({c.x + kx, c.y - ry}, {c.x + rx, c.y - ky}, {c.x + rx, c.y})
        .close();
}

Path& Path::circle(Vec2 center, double radius)
{
    return ellipse({center.x - radius, center.y - radius, 2 * radius, 2 * radius});
}

} // namespace zento
