#include "ZentoRender/BackgroundRenderer.h"

#include "ZentoCore/Error.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoRender/BackgroundPattern.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zento::BackgroundRenderer {
namespace {

struct Size {
    double w = 0;
    double h = 0;

    double longer() const { return std::max(w, h); }
};

/// Where the spots of colour lie.
struct Spot {
    double x = 0; // fractions of the canvas, y up
    double y = 0;
    double radius = 0; // fraction of the longer side
};
constexpr std::array<Spot, 5> kSpots = {
    {{0.18, 0.75, 0.55},
     {0.85, 0.25, 0.6},
     {0.55, 0.95, 0.5},
     {0.95, 0.85, 0.45},
     {0.08, 0.15, 0.42}}};
constexpr std::size_t kFirstColorsSecondSpot = 2;

/// One drawing per kind of background. Their recipes have y up, so `m_canvas` is turned over.
class Drawing {
public:
    Drawing(Canvas& canvas, Size size)
        : m_canvas(canvas)
        , m_size(size)
    {
    }

    void operator()(const Background::Color& background)
    {
        m_canvas.fillAll(color(background.color));
    }

    void operator()(const Background::LinearGradient& background)
    {
        m_canvas.fillAll(LinearGradientPaint{
            .from = {0.5 * m_size.w, m_size.h},
            .to = {0.5 * m_size.w, 0},
            .stops = {{0, color(background.top)}, {1, color(background.bottom)}}});
    }

    void operator()(const Background::Gradient& background)
    {
        const double last = std::max(1.0, static_cast<double>(background.colors.size()) - 1);
        std::vector<GradientStop> stops;
        stops.reserve(background.colors.size());
        for (const std::string& hex : background.colors)
            stops.push_back({static_cast<double>(stops.size()) / last, color(hex)});
        const double angle = background.angle * std::numbers::pi / 180;
        const double half = m_size.longer() * 0.5;
        const Vec2 reach = {half * std::cos(angle), half * std::sin(angle)};
        m_canvas.fillAll(LinearGradientPaint{
            .from = {0.5 * m_size.w - reach.x, 0.5 * m_size.h + reach.y},
            .to = {0.5 * m_size.w + reach.x, 0.5 * m_size.h - reach.y},
            .stops = std::move(stops)});
    }

    void operator()(const Background::Radial& background)
    {
        m_canvas.fillAll(RadialGradientPaint{
            .center0 = {0.5 * m_size.w, 0.6 * m_size.h}, // the light sits above the middle
            .radius0 = 0,
            .center1 = {0.5 * m_size.w, 0.5 * m_size.h},
            .radius1 = 0.75 * m_size.longer(),
            .stops = {{0, color(background.inner)}, {1, color(background.outer)}}});
    }

    void operator()(const Background::Blobs& background)
    {
        m_canvas.fillAll(color(background.base));
        for (std::size_t i = 0; i < background.colors.size(); ++i) {
            drawSpot(kSpots[i % kSpots.size()], background.colors[i]);
            if (i == 0)
                drawSpot(kSpots[kFirstColorsSecondSpot], background.colors[i]);
        }
    }

    void operator()(const Background::Pattern& background)
    {
        m_canvas.fillAll(color(background.paper));
        const double tile = std::max(m_size.h * background.scale, 6.0);
        drawPattern(background.kind, m_canvas, m_size.w, m_size.h, color(background.ink), tile);
    }

    void operator()(const Background::Image& background)
    {
        const auto image = decode(background.path, static_cast<int>(2 * m_size.longer()));
        if (!image) {
            m_canvas.fillAll(Color::gray(0.1));
            return;
        }
        const double s = std::max(m_size.w / image->width(), m_size.h / image->height());
        const double w = image->width() * s;
        const double h = image->height() * s;
        const CanvasScope upright(m_canvas);
        m_canvas.translate({0, m_size.h});
        m_canvas.scale(1, -1);
        m_canvas.drawImage(*image, {(m_size.w - w) * 0.5, (m_size.h - h) * 0.5, w, h});
    }

private:
    static std::optional<Canvas> decode(const std::string& path, int maxPixels)
    {
        try {
            return loadImage(path, maxPixels);
        } catch (const Error&) {
            return std::nullopt; // a wallpaper that is gone does not end a film
        }
    }

    void drawSpot(const Spot& spot, const std::string& hex)
    {
        const Vec2 center = {m_size.w * spot.x, m_size.h * spot.y};
        m_canvas.fillAll(RadialGradientPaint{
            .center0 = center,
            .radius0 = 0,
            .center1 = center,
            .radius1 = m_size.longer() * spot.radius,
            .stops = {{0, color(hex, 0.75)}, {1, color(hex, 0)}},
            .extend = GradientExtend::None});
    }

    Canvas& m_canvas;
    Size m_size;
};

} // namespace

Canvas render(const StyleSpec::Background& background, int width, int height)
{
    Canvas canvas(width, height);
    draw(background, canvas);
    return canvas;
}

void draw(const StyleSpec::Background& background, Canvas& canvas)
{
    const Size size = {static_cast<double>(canvas.width()), static_cast<double>(canvas.height())};
    const CanvasScope scope(canvas);
    canvas.translate({0, size.h});
    canvas.scale(1, -1);
    std::visit(Drawing(canvas, size), background);
}

bool isLight(const Canvas& background)
{
    constexpr double kLightFrom = 0.6;
    std::array<std::uint64_t, 3> sums = {}; // blue, green, red
    const auto pixels = background.pixels();
    for (int y = 0; y < pixels.height; ++y)
        for (int x = 0; x < pixels.width; ++x)
            for (unsigned c = 0; c < 3; ++c)
                sums[c] += pixels.row(y)[x] >> (8 * c) & 0xff;
    const double count = double(pixels.width) * pixels.height;
    const auto level = [&](std::size_t c) {
        return std::round(static_cast<double>(sums[c]) / count);
    };
    return (0.299 * level(2) + 0.587 * level(1) + 0.114 * level(0)) / 255 > kLightFrom;
}

Color color(std::string_view hex, double alpha)
{
    hex.remove_prefix(std::min<std::size_t>(hex.size(), 1));
    unsigned value = 0;
    std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
    const auto component = [value](unsigned shift) { return ((value >> shift) & 0xff) / 255.0; };
    return {component(16), component(8), component(0), alpha};
}

} // namespace zento::BackgroundRenderer
