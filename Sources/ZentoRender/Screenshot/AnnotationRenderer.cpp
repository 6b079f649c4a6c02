#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include "ZentoImaging/ImageFile.h"
#include "ZentoRender/BackgroundRenderer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace zento::AnnotationRenderer {
namespace {

constexpr double kLongest = 1e6; // pixels; what draws is exact to a fraction of one up to here

constexpr double kDimming = 0.5;
constexpr double kSpotlightRadius = 12;
constexpr double kHighlightAlpha = 0.4;
constexpr double kOutline = 0.025; // of a text's font size

Rect intersection(const Rect& a, const Rect& b)
{
    const double x = std::max(a.x, b.x);
    const double y = std::max(a.y, b.y);
    return {x, y, std::min(a.x + a.w, b.x + b.w) - x, std::min(a.y + a.h, b.y + b.h) - y};
}

Rect wholePixels(const Rect& r)
{
    const double x = std::floor(r.x);
    const double y = std::floor(r.y);
    return {x, y, std::ceil(r.x + r.w) - x, std::ceil(r.y + r.h) - y};
}

bool isFinite(const Rect& r)
{
    return std::isfinite(r.x) && std::isfinite(r.y) && std::isfinite(r.w) && std::isfinite(r.h);
}

/// Whole pixels of an image as an image of their own.
Canvas cut(const Canvas& image, const Rect& area)
{
    Canvas part(static_cast<int>(area.w), static_cast<int>(area.h));
    part.drawImage(
        image, {-area.x, -area.y, image.bounds().w, image.bounds().h}, Interpolation::Nearest);
    return part;
}

/// The mark with its lengths limited; nothing if it cannot be drawn.
std::optional<Annotation> drawable(Annotation annotation)
{
    bool isFinite = std::isfinite(annotation.width);
    const auto limit = [&isFinite](double& value) {
        isFinite = isFinite && std::isfinite(value);
        value = std::clamp(value, -kLongest, kLongest);
    };
    const auto limitPoint = [&](Vec2& p) {
        limit(p.x);
        limit(p.y);
    };
    limitPoint(annotation.start);
    limitPoint(annotation.end);
    std::ranges::for_each(annotation.points, limitPoint);
    if (!isFinite)
        return std::nullopt;
    annotation.width = std::clamp(annotation.width, 0.0, kLongest);
    return annotation;
}

/// Pixels of a reduced copy for those of the image.
Rect reduced(const Rect& r, double scale)
{
    const double x = std::round(r.x * scale);
    const double y = std::round(r.y * scale);
    return {
        x,
        y,
        std::max(std::round((r.x + r.w) * scale) - x, 1.0),
        std::max(std::round((r.y + r.h) * scale) - y, 1.0)};
}

void drawMosaic(const Annotation& annotation, const Canvas& image, Canvas& canvas, double scale)
{
    const Rect area = intersection(annotation.rect(), image.bounds());
    if (!(area.w > 2 * scale) || !(area.h > 2 * scale))
        return;
    const double cell = std::max({area.w / 14, area.h / 14, 8.0 * scale});
    const auto cells = [cell](double length) {
        return std::max(static_cast<int>(length / cell), 1);
    };
    Canvas small(cells(area.w), cells(area.h));
    const double x = small.width() / area.w;
    const double y = small.height() / area.h;
    small.drawImage(image, {-area.x * x, -area.y * y, image.bounds().w * x, image.bounds().h * y});
    canvas.drawImage(small, area, Interpolation::Nearest);
}

void dimAround(std::span<const Annotation> annotations, Canvas& canvas, double scale)
{
    Path path;
    for (const Annotation& annotation : annotations)
        if (annotation.kind == Annotation::Kind::Spotlight)
            path.roundedRect(annotation.rect(), kSpotlightRadius * scale);
    if (path.isEmpty())
        return;
    path.rect(canvas.bounds());
    canvas.fill(path, Color::gray(0, kDimming), FillRule::EvenOdd);
}

/// Draws one mark after the other with the same stroke.
class MarkPainter {
public:
    MarkPainter(Canvas& canvas, double baseLineWidth)
        : m_canvas(canvas)
        , m_baseLineWidth(baseLineWidth)
    {
    }

    void paint(const Annotation& mark)
    {
        m_color = BackgroundRenderer::color(mark.colorHex);
        m_lineWidth = std::min(m_baseLineWidth * mark.width, kLongest);
        switch (mark.kind) {
        case Annotation::Kind::Arrow:
            return paintArrow(mark.start, mark.end);
        case Annotation::Kind::Line:
            return stroke(Path().line(mark.start, mark.end));
        case Annotation::Kind::Box:
            return stroke(Path().roundedRect(mark.rect(), m_lineWidth));
        case Annotation::Kind::Ellipse:
            return stroke(Path().ellipse(mark.rect()));
        case Annotation::Kind::Highlight:
            return m_canvas.fill(
                Path().rect(mark.rect()),
                m_color.withAlpha(kHighlightAlpha),
                FillRule::Winding,
                BlendMode::Multiply);
        case Annotation::Kind::Pen:
            return paintPen(mark.points);
        case Annotation::Kind::Badge:
            return paintBadge(mark);
        case Annotation::Kind::Text:
            return paintText(mark);
        case Annotation::Kind::Blur:
        case Annotation::Kind::Spotlight:
            return; // below all marks
        }
    }

private:
    void stroke(const Path& path)
    {
        m_canvas.stroke(
            path, {.width = m_lineWidth, .join = LineJoin::Round, .cap = LineCap::Round}, m_color);
    }

    /// Its head is open: two strokes.
    void paintArrow(Vec2 start, Vec2 end)
    {
        constexpr double kHalfOpening = 0.5; // radians
        const double length = 4.5 * m_lineWidth;
        const double back = std::atan2(end.y - start.y, end.x - start.x) + std::numbers::pi;
        Path path;
        path.line(start, end);
        for (const double angle : {back - kHalfOpening, back + kHalfOpening})
            path.line(end, {end.x + length * std::cos(angle), end.y + length * std::sin(angle)});
        stroke(path);
    }

    void paintPen(const std::vector<Vec2>& points)
    {
        if (points.empty())
            return;
        Path path;
        path.moveTo(points.front());
        for (std::size_t i = points.size() == 1 ? 0 : 1; i < points.size(); ++i)
            path.lineTo(points[i]); // a single point becomes a dot
        stroke(path);
    }

    void paintBadge(const Annotation& mark)
    {
        const double radius = kBadgeRadius * m_lineWidth;
        paintBadgeShadow(mark.start, radius);
        m_canvas.fill(Path().circle(mark.start, radius), m_color);
        const Font font = {.size = fontSize(1.15 * radius), .weight = FontWeight::Bold};
        const std::string digits = std::to_string(mark.number);
        const TextMetrics metrics = measureText(digits, font);
        const Vec2 origin = {
            mark.start.x - metrics.width / 2,
            mark.start.y + (metrics.ascent - metrics.descent) / 2};
        const double ink = luminance(mark.colorHex) > 0.6 ? 0 : 1;
        m_canvas.drawText(digits, font, origin, Color::gray(ink));
    }

    void paintBadgeShadow(Vec2 center, double radius)
    {
        const double sigma = 0.75 * m_baseLineWidth; // a shadow's blur is two of it
        const Vec2 middle = {center.x, center.y + 0.5 * m_baseLineWidth};
        const double reach = radius + 3 * sigma + 1;
        const Rect nearby = m_canvas.bounds();
        const Rect area = intersection(
            wholePixels({middle.x - reach, middle.y - reach, 2 * reach, 2 * reach}),
            wholePixels({-4 * sigma, -4 * sigma, nearby.w + 8 * sigma, nearby.h + 8 * sigma}));
        if (area.w < 1 || area.h < 1)
            return;
        Canvas shadow(static_cast<int>(area.w), static_cast<int>(area.h));
        const Vec2 inside = {middle.x - area.x, middle.y - area.y};
        shadow.fill(Path().circle(inside, radius), Color::gray(0, 0.35));
        shadow.blur(sigma);
        m_canvas.drawImage(shadow, area, Interpolation::Nearest);
    }

    void paintText(const Annotation& mark)
    {
        const Font font = {.size = fontSize(kTextSize * m_lineWidth), .weight = FontWeight::Bold};
        if (mark.text.empty() || !(font.size > 0))
            return;
        const double descent = measureText(mark.text, font).descent;
        const Vec2 origin = {mark.start.x, mark.start.y + font.size - descent};
        // The outline lies around the glyphs and below them: over them it would show the seams
        // where the glyphs of a script overlap.
        m_canvas.strokeText(
            mark.text,
            font,
            origin,
            {.width = 2 * kOutline * font.size, .join = LineJoin::Round},
            Color::gray(0, 0.6));
        m_canvas.drawText(mark.text, font, origin, m_color);
    }

    /// Glyphs larger than every canvas are not worth their outlines.
    static double fontSize(double pixels) { return std::min(pixels, 30000.0); }

    Canvas& m_canvas;
    double m_baseLineWidth;
    double m_lineWidth = 0; // of the mark
    Color m_color;
};

} // namespace

Rect keptArea(const std::optional<Rect>& crop, Vec2 imageSize)
{
    const Rect whole = {0, 0, imageSize.x, imageSize.y};
    if (!crop || !isFinite(*crop))
        return whole;
    const Rect upright = {
        std::min(crop->x, crop->x + crop->w),
        std::min(crop->y, crop->y + crop->h),
        std::abs(crop->w),
        std::abs(crop->h)};
    const Rect area = intersection(wholePixels(upright), whole);
    return area.w >= 1 && area.h >= 1 ? area : whole;
}

Canvas flatten(
    const Canvas& base,
    std::span<const Annotation> annotations,
    const std::optional<Rect>& crop,
    double scale)
{
    const Vec2 imageSize = {std::round(base.width() / scale), std::round(base.height() / scale)};
    const Rect kept = keptArea(crop, imageSize);
    const Canvas image = cut(base, reduced(kept, scale));
    std::vector<Annotation> marks;
    for (const Annotation& annotation : annotations)
        if (const auto mark = drawable(annotation))
            marks.push_back(mark->translated({-kept.x, -kept.y}).scaled(scale));
    Canvas result = image.clone();
    for (const Annotation& mark : marks)
        if (mark.kind == Annotation::Kind::Blur)
            drawMosaic(mark, image, result, scale);
    dimAround(marks, result, scale);
    draw(marks, result, baseLineWidth(kept.h) * scale);
    return result;
}

void draw(std::span<const Annotation> annotations, Canvas& canvas, double baseLineWidth)
{
    MarkPainter painter(canvas, baseLineWidth);
    for (const Annotation& annotation : annotations)
        if (const auto mark = drawable(annotation))
            painter.paint(*mark);
}

double luminance(std::string_view colorHex)
{
    const Color color = BackgroundRenderer::color(colorHex);
    return 0.299 * color.red + 0.587 * color.green + 0.114 * color.blue;
}

std::vector<std::byte> pngData(const Canvas& image, double scale)
{
    return encodePng(image, std::isfinite(scale) ? std::max(scale, 1.0) : 1.0);
}

} // namespace zento::AnnotationRenderer
