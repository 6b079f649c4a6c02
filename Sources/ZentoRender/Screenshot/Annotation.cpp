#include "ZentoRender/Screenshot/Annotation.h"

#include "ZentoCore/Text.h"

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

constexpr std::array<std::string_view, kAllAnnotationKinds.size()> kNames = {
    "arrow", "line", "box", "ellipse", "highlight", "pen", "blur", "spotlight", "badge", "text"};

Rect between(Vec2 a, Vec2 b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::abs(a.x - b.x), std::abs(a.y - b.y)};
}

/// Edges count as inside.
bool contains(const Rect& rect, double tolerance, Vec2 p)
{
    return p.x >= rect.x - tolerance && p.x <= rect.x + rect.w + tolerance
           && p.y >= rect.y - tolerance && p.y <= rect.y + rect.h + tolerance;
}

double distanceToPath(Vec2 p, const std::vector<Vec2>& points)
{
    double nearest = Annotation::distance(p, points.front(), points.front());
    for (std::size_t i = 1; i < points.size(); ++i)
        nearest = std::min(nearest, Annotation::distance(p, points[i - 1], points[i]));
    return nearest;
}

template <typename Change>
Annotation moved(Annotation annotation, Change change)
{
    annotation.start = change(annotation.start);
    annotation.end = change(annotation.end);
    for (Vec2& point : annotation.points)
        point = change(point);
    return annotation;
}

} // namespace

Rect Annotation::rect() const
{
    if (kind != Kind::Pen || points.empty())
        return between(start, end);
    Vec2 low = points.front();
    Vec2 high = low;
    for (const Vec2& point : points) {
        low = {std::min(low.x, point.x), std::min(low.y, point.y)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    }
    return between(low, high);
}

Annotation Annotation::translated(Vec2 offset) const
{
    return moved(*this, [offset](Vec2 p) { return Vec2{p.x + offset.x, p.y + offset.y}; });
}

Annotation Annotation::scaled(double factor) const
{
    return moved(*this, [factor](Vec2 p) { return Vec2{p.x * factor, p.y * factor}; });
}

bool Annotation::hitTest(Vec2 p, double tolerance, double imageHeight) const
{
    const double w = baseLineWidth(imageHeight) * width;
    switch (kind) {
    case Kind::Arrow:
    case Kind::Line:
        return distance(p, start, end) <= tolerance + w;
    case Kind::Box:
    case Kind::Ellipse:
    case Kind::Highlight:
    case Kind::Blur:
    case Kind::Spotlight:
        return contains(rect(), tolerance, p);
    case Kind::Pen:
        return !points.empty() && distanceToPath(p, points) <= tolerance + w;
    case Kind::Badge:
        return distance(p, start, start) <= tolerance + kBadgeRadius * w;
    case Kind::Text: {
        // The box lies above `start`, though the text is drawn below it.
        const double size = kTextSize * w;
        const double advance = 0.62 * size * static_cast<double>(characterCount(text));
        const Rect box = {start.x, start.y - 1.1 * size, std::max(size, advance), 1.3 * size};
        return contains(box, tolerance, p);
    }
    }
    return false;
}

double Annotation::distance(Vec2 p, Vec2 segmentStart, Vec2 segmentEnd)
{
    const Vec2 along = {segmentEnd.x - segmentStart.x, segmentEnd.y - segmentStart.y};
    const Vec2 toPoint = {p.x - segmentStart.x, p.y - segmentStart.y};
    const double squared = along.x * along.x + along.y * along.y;
    const double t =
        squared > 0 ? std::clamp((toPoint.x * along.x + toPoint.y * along.y) / squared, 0.0, 1.0)
                    : 0;
    return std::hypot(toPoint.x - t * along.x, toPoint.y - t * along.y);
}

std::string_view name(Annotation::Kind kind)
{
    return kNames[static_cast<std::size_t>(kind)];
}

std::optional<Annotation::Kind> annotationKind(std::string_view name)
{
    const auto found = std::ranges::find(kNames, name);
    if (found == kNames.end())
        return std::nullopt;
    return kAllAnnotationKinds[static_cast<std::size_t>(found - kNames.begin())];
}

bool isPoint(Annotation::Kind kind)
{
    return kind == Annotation::Kind::Badge || kind == Annotation::Kind::Text;
}

bool hasEnds(Annotation::Kind kind)
{
    return kind != Annotation::Kind::Pen && !isPoint(kind);
}

double baseLineWidth(double imageHeight)
{
    return std::max(imageHeight / 260, 4.0);
}

} // namespace zento
