#include "ZentoRender/TextCardPainter.h"

#include "ZentoRender/BackgroundRenderer.h"
#include "ZentoRender/PlacedDrawing.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {
namespace {

constexpr double kFade = 0.35;    // seconds
constexpr double kSettling = 0.9; // seconds
constexpr double kSettledFrom = 0.03;
constexpr double kOpaque = 0.999;

std::string keyOf(const TextCard& card)
{
    constexpr char kSeparator = '\x1f';
    return card.title + kSeparator + card.subtitle.value_or("") + kSeparator + card.design
           + kSeparator + card.accentHex;
}

} // namespace

CardAppearance cardAppearance(double duration, double progress)
{
    const double t = progress * duration;
    const double alpha = std::clamp(std::min(t, duration - t) / kFade, 0.0, 1.0);
    const double unsettled = 1 - std::clamp(t / kSettling, 0.0, 1.0);
    return {
        .alpha = alpha < kOpaque ? alpha : 1, .scale = 1 + kSettledFrom * std::pow(unsettled, 3)};
}

void TextCardPainter::paint(
    const TextCard& card, const CardAppearance& appearance, const PictureView& canvas)
{
    const std::string key = keyOf(card);
    const auto& drawing = m_cards.get(key, [&] { return drawn(card, canvas.layout); });
    if (!drawing)
        return;
    const double scale = appearance.scale;
    if (m_placed.key != key || m_placed.scale != scale) {
        const Vec2 rest = drawing->restingPoint;
        const Vec2 origin = {
            rest.x + (drawing->origin.x - rest.x) * scale,
            rest.y + (drawing->origin.y - rest.y) * scale};
        m_placed = {key, scale, PlacedSprite(drawing->sprite, origin, scale)};
    }
    m_placed.sprite.draw(canvas, appearance.alpha);
}

// A card that settles from a larger size shows nothing that it does not show at rest: what lies
// outside the frame then need not be drawn.
std::optional<TextCardPainter::Drawn>
TextCardPainter::drawn(const TextCard& card, Layout layout) const
{
    const TextCardLayout lines = layOut(card, m_output);
    const Color accent = BackgroundRenderer::color(card.accentHex);
    const auto drawing = drawVisible(lines.place, m_output, [&](Canvas& part, Vec2 origin) {
        draw(lines, accent, m_ground, part, origin);
    });
    if (!drawing)
        return std::nullopt;
    return Drawn{
        .sprite = Sprite(drawing->canvas, layout),
        .origin = drawing->origin,
        .restingPoint = lines.restingPoint};
}

} // namespace zento
