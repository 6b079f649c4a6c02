#include "ZentoImaging/Canvas.h"

#include "ZentoCore/Error.h"
#include "ZentoImaging/Blur.h"
#include "ZentoImaging/CanvasState.hpp"

#include <cassert>
#include <cstring>
#include <string>

namespace zento {

namespace {

template <typename... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};

cairo_operator_t cairoOperator(BlendMode mode)
{
    switch (mode) {
    case BlendMode::Over:
        return CAIRO_OPERATOR_OVER;
    case BlendMode::Multiply:
        return CAIRO_OPERATOR_MULTIPLY;
    case BlendMode::Replace:
        return CAIRO_OPERATOR_SOURCE;
    }
    return CAIRO_OPERATOR_OVER;
}

cairo_fill_rule_t cairoRule(FillRule rule)
{
    return rule == FillRule::Winding ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD;
}

void append(cairo_t* context, const Path& path)
{
    cairo_new_path(context);
    for (const Path::Step& step : path.steps()) {
        std::visit(
            Overloaded{
                [&](const Path::MoveTo& s) { cairo_move_to(context, s.p.x, s.p.y); },
                [&](const Path::LineTo& s) { cairo_line_to(context, s.p.x, s.p.y); },
                [&](const Path::CubicTo& s) {
                    cairo_curve_to(
                        context,
                        s.control1.x,
                        s.control1.y,
                        s.control2.x,
                        s.control2.y,
                        s.p.x,
                        s.p.y);
                },
                [&](const Path::Close&) { cairo_close_path(context); }},
            step);
    }
}

void addStops(
    cairo_pattern_t* pattern, const std::vector<GradientStop>& stops, GradientExtend extend)
{
    for (const GradientStop& stop : stops) {
        const Color& c = stop.color;
        cairo_pattern_add_color_stop_rgba(pattern, stop.offset, c.red, c.green, c.blue, c.alpha);
    }
    cairo_pattern_set_extend(
        pattern, extend == GradientExtend::Pad ? CAIRO_EXTEND_PAD : CAIRO_EXTEND_NONE);
}

} // namespace

void setSource(cairo_t* context, const Paint& paint)
{
    std::visit(
        Overloaded{
            [&](const Color& c) {
                cairo_set_source_rgba(context, c.red, c.green, c.blue, c.alpha);
            },
            [&](const LinearGradientPaint& g) {
                const CairoPattern pattern(
                    cairo_pattern_create_linear(g.from.x, g.from.y, g.to.x, g.to.y));
                addStops(pattern.get(), g.stops, g.extend);
                cairo_set_source(context, pattern.get());
            },
            [&](const RadialGradientPaint& g) {
                const CairoPattern pattern(cairo_pattern_create_radial(
                    g.center0.x, g.center0.y, g.radius0, g.center1.x, g.center1.y, g.radius1));
                addStops(pattern.get(), g.stops, g.extend);
                cairo_set_source(context, pattern.get());
            }},
        paint);
}

void setStroke(cairo_t* context, const Stroke& stroke)
{
    cairo_set_line_width(context, stroke.width);
    switch (stroke.join) {
    case LineJoin::Miter:
        cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
        break;
    case LineJoin::Round:
        cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
        break;
    case LineJoin::Bevel:
        cairo_set_line_join(context, CAIRO_LINE_JOIN_BEVEL);
        break;
    }
    switch (stroke.cap) {
    case LineCap::Butt:
        cairo_set_line_cap(context, CAIRO_LINE_CAP_BUTT);
        break;
    case LineCap::Round:
        cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
        break;
    case LineCap::Square:
        cairo_set_line_cap(context, CAIRO_LINE_CAP_SQUARE);
        break;
    }
}

Canvas::Canvas(int width, int height)
    : m_state(std::make_unique<State>())
    , m_width(width)
    , m_height(height)
{
    m_state->surface.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    m_state->context.reset(cairo_create(m_state->surface.get()));
    const cairo_status_t status = cairo_status(m_state->context.get());
    if (width <= 0 || height <= 0 || status != CAIRO_STATUS_SUCCESS) {
        throw Error(
            ErrorCode::kNoPicture,
            "a canvas of " + std::to_string(width) + " x " + std::to_string(height)
                + " pixels could not be made: "
                + (width <= 0 || height <= 0 ? "it is empty" : cairo_status_to_string(status)));
    }
}

Canvas::Canvas(Canvas&&) noexcept = default;
Canvas& Canvas::operator=(Canvas&&) noexcept = default;
Canvas::~Canvas() = default;

Canvas Canvas::clone() const
{
    Canvas result(m_width, m_height);
    const Plane<const std::uint32_t> from = pixels();
    const Plane<std::uint32_t> to = result.pixels();
    for (int y = 0; y < m_height; ++y) {
        std::memcpy(to.row(y), from.row(y), sizeof(std::uint32_t) * std::size_t(m_width));
    }
    return result;
}

Plane<const std::uint32_t> Canvas::pixels() const
{
    cairo_surface_t* surface = m_state->surface.get();
    cairo_surface_flush(surface);
    // Cairo aligns a row of this format to four bytes at least.
    const void* data = cairo_image_surface_get_data(surface);
    return {
        static_cast<const std::uint32_t*>(data),
        m_width,
        m_height,
        cairo_image_surface_get_stride(surface) / 4};
}

Plane<std::uint32_t> Canvas::pixels()
{
    cairo_surface_t* surface = m_state->surface.get();
    cairo_surface_flush(surface);
    cairo_surface_mark_dirty(surface);
    void* data = cairo_image_surface_get_data(surface);
    return {
        static_cast<std::uint32_t*>(data),
        m_width,
        m_height,
        cairo_image_surface_get_stride(surface) / 4};
}

void Canvas::save()
{
    cairo_save(m_state->context.get());
}
void Canvas::restore()
{
    cairo_restore(m_state->context.get());
}

void Canvas::translate(Vec2 offset)
{
    cairo_translate(m_state->context.get(), offset.x, offset.y);
}

void Canvas::scale(double x, double y)
{
    cairo_scale(m_state->context.get(), x, y);
}

void Canvas::clip(const Path& path, FillRule rule)
{
    cairo_t* context = m_state->context.get();
    append(context, path);
    cairo_set_fill_rule(context, cairoRule(rule));
    cairo_clip(context);
}

void Canvas::fillAll(const Paint& paint, BlendMode mode)
{
    cairo_t* context = m_state->context.get();
    setSource(context, paint);
    cairo_set_operator(context, cairoOperator(mode));
    cairo_paint(context);
}

void Canvas::fill(const Path& path, const Paint& paint, FillRule rule, BlendMode mode)
{
    cairo_t* context = m_state->context.get();
    append(context, path);
    cairo_set_fill_rule(context, cairoRule(rule));
    setSource(context, paint);
    cairo_set_operator(context, cairoOperator(mode));
    cairo_fill(context);
}

void Canvas::stroke(const Path& path, const Stroke& stroke, const Paint& paint, BlendMode mode)
{
    cairo_t* context = m_state->context.get();
    append(context, path);
    setStroke(context, stroke);
    setSource(context, paint);
    cairo_set_operator(context, cairoOperator(mode));
    cairo_stroke(context);
}

void Canvas::drawImage(
    const Canvas& image, const Rect& destination, Interpolation interpolation, double alpha)
{
    assert(&image != this);
    cairo_t* context = m_state->context.get();
    const CanvasScope scope(*this);
    cairo_surface_flush(image.m_state->surface.get());
    clip(Path().rect(destination));
    translate({destination.x, destination.y});
    scale(destination.w / image.m_width, destination.h / image.m_height);
    cairo_set_source_surface(context, image.m_state->surface.get(), 0, 0);
    cairo_pattern_t* source = cairo_get_source(context);
    cairo_pattern_set_filter(
        source, interpolation == Interpolation::Nearest ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BEST);
    // The edge goes on, so that it does not fade into what lies below where it is enlarged.
    cairo_pattern_set_extend(source, CAIRO_EXTEND_PAD);
    cairo_set_operator(context, CAIRO_OPERATOR_OVER);
    cairo_paint_with_alpha(context, alpha);
}

void Canvas::blur(double sigma)
{
    // A blur treats the four bytes of a pixel alike: each is taken apart as a plane of its own.
    const Plane<std::uint32_t> argb = pixels();
    Picture channel(m_width, m_height, Layout::Rgb);
    const Plane<std::uint8_t> plane = channel.plane(0);
    for (int shift = 0; shift < 32; shift += 8) {
        for (int y = 0; y < m_height; ++y) {
            for (int x = 0; x < m_width; ++x) {
                plane.row(y)[x] = static_cast<std::uint8_t>(argb.row(y)[x] >> shift);
            }
        }
        gaussianBlur(plane, sigma, BlurEdge::Zero);
        const std::uint32_t others = ~(std::uint32_t{0xff} << shift);
        for (int y = 0; y < m_height; ++y) {
            for (int x = 0; x < m_width; ++x) {
                std::uint32_t& pixel = argb.row(y)[x];
                pixel = (pixel & others) | (std::uint32_t{plane.row(y)[x]} << shift);
            }
        }
    }
}

} // namespace zento
