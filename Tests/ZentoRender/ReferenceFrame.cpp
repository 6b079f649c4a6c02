#include "ReferenceFrame.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {
namespace {

// Points along the side of a mean: inside, all is smooth; across an edge the share must be exact.
constexpr int kPointsInside = 3;
constexpr int kPointsAcrossEdge = 40;

bool isInRoundedRect(Vec2 p, const Rect& rect, double radius)
{
    const double dx = std::max({rect.x + radius - p.x, p.x - (rect.x + rect.w - radius), 0.0});
    const double dy = std::max({rect.y + radius - p.y, p.y - (rect.y + rect.h - radius), 0.0});
    return std::hypot(dx, dy) <= radius;
}

std::vector<double> gaussian(double sigma)
{
    const int reach = static_cast<int>(std::ceil(4 * sigma));
    std::vector<double> weights;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(std::exp(-i * i / (2 * sigma * sigma)));
        sum += weights.back();
    }
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

/// A blurred rounded rectangle at the pixels of a canvas, of the plain definition.
std::vector<double>
blurredRoundedRect(VideoSize size, const Rect& rect, double radius, double sigma)
{
    const std::vector<double> weights = gaussian(sigma);
    const int reach = static_cast<int>(weights.size() / 2);
    const int w = size.width + 2 * reach;
    const int h = size.height + 2 * reach;
    const auto at = [w](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(w)
               + static_cast<std::size_t>(x);
    };
    std::vector<double> covered(at(0, h));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int inside = 0;
            for (int i = 0; i < 16; ++i)
                inside +=
                    isInRoundedRect(
                        {x - reach + (i & 3) * 0.25 + 0.125, y - reach + (i >> 2) * 0.25 + 0.125},
                        rect,
                        radius)
                        ? 1
                        : 0;
            covered[at(x, y)] = inside / 16.0;
        }
    const auto weightAt = [&](int k) { return *(weights.begin() + reach + k); };
    std::vector<double> across(covered.size());
    for (int y = 0; y < h; ++y)
        for (int x = reach; x < w - reach; ++x)
            for (int k = -reach; k <= reach; ++k)
                across[at(x, y)] += weightAt(k) * covered[at(x + k, y)];
    std::vector<double> blurred;
    for (int y = reach; y < h - reach; ++y)
        for (int x = reach; x < w - reach; ++x) {
            double sum = 0;
            for (int k = -reach; k <= reach; ++k)
                sum += weightAt(k) * across[at(x, y + k)];
            blurred.push_back(sum);
        }
    return blurred;
}

} // namespace

ReferenceFrame::ReferenceFrame(
    VideoSize canvas,
    const Card& card,
    const StyleSpec& style,
    Painting background,
    Painting source)
    : m_canvas(canvas)
    , m_card(card)
    , m_style(style)
    , m_background(std::move(background))
    , m_source(std::move(source))
    , m_shadow(blurredRoundedRect(
          canvas,
          {card.origin.x, card.origin.y + style.shadowOffsetY, card.w, card.h},
          style.cornerRadius,
          style.shadowRadius * 0.5))
{
}

bool ReferenceFrame::isOnCard(Vec2 p) const
{
    return isInRoundedRect(
        p, {m_card.origin.x, m_card.origin.y, m_card.w, m_card.h}, m_style.cornerRadius);
}

double ReferenceFrame::shadowAt(Vec2 p) const
{
    const auto pixel = [this](int x, int y) {
        x = std::clamp(x, 0, m_canvas.width - 1);
        y = std::clamp(y, 0, m_canvas.height - 1);
        return m_shadow
            [static_cast<std::size_t>(y) * static_cast<std::size_t>(m_canvas.width)
             + static_cast<std::size_t>(x)];
    };
    const double left = std::floor(p.x - 0.5);
    const double top = std::floor(p.y - 0.5);
    const double fx = p.x - 0.5 - left;
    const double fy = p.y - 0.5 - top;
    const int x = static_cast<int>(left);
    const int y = static_cast<int>(top);
    return (pixel(x, y) * (1 - fx) + pixel(x + 1, y) * fx) * (1 - fy)
           + (pixel(x, y + 1) * (1 - fx) + pixel(x + 1, y + 1) * fx) * fy;
}

RgbValue ReferenceFrame::colorAt(Vec2 p) const
{
    if (isOnCard(p))
        return m_source(
            {(p.x - m_card.origin.x) / m_card.scale, (p.y - m_card.origin.y) / m_card.scale});
    RgbValue color = m_background(p);
    const bool coversCanvas = m_card.origin.x <= 0 && m_card.origin.y <= 0
                              && m_card.origin.x + m_card.w >= m_canvas.width
                              && m_card.origin.y + m_card.h >= m_canvas.height;
    const double opacity = coversCanvas ? 0 : m_style.shadowOpacity;
    for (double& component : color)
        component *= 1 - opacity * shadowAt(p);
    return color;
}

bool ReferenceFrame::isCrossed(const Rect& area) const
{
    const bool first = isOnCard({area.x, area.y});
    return first != isOnCard({area.x + area.w, area.y})
           || first != isOnCard({area.x, area.y + area.h})
           || first != isOnCard({area.x + area.w, area.y + area.h});
}

std::array<double, 3> ReferenceFrame::mean(const Rect& area) const
{
    const int points = isCrossed(area) ? kPointsAcrossEdge : kPointsInside;
    RgbValue sum = {};
    for (int i = 0; i < points; ++i)
        for (int j = 0; j < points; ++j) {
            const RgbValue color = colorAt(
                {area.x + (i + 0.5) / points * area.w, area.y + (j + 0.5) / points * area.h});
            for (std::size_t c = 0; c < sum.size(); ++c)
                sum[c] += color[c] / (points * points);
        }
    return limitedRange(sum);
}

} // namespace zento
