#include "ZentoImaging/Blur.h"
#include "ZentoRender/TextCardLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zento {
namespace {

constexpr double kLightGroundInk = 0.08;
constexpr double kSubtitleAlpha = 0.72;
constexpr double kPanelCorner = 0.9; // title sizes
constexpr double kPanelOutline = 2;  // pixels
constexpr double kPanelOutlineAlpha = 0.28;
constexpr double kGlowSigma = 0.55 / 2; // title sizes; a shadow's blur is two sigma
constexpr double kGlowAlpha = 0.95;

struct Colors {
    Color ink;
    Color accent;
    Color panel;
    Color panelOutline;
};

Colors colorsOn(Ground ground, const Color& accent)
{
    const bool isLight = ground == Ground::Light;
    const double panel = isLight ? 0 : 1;
    return {
        .ink = Color::gray(isLight ? kLightGroundInk : 1),
        .accent = accent,
        .panel = Color::gray(panel, isLight ? 0.06 : 0.1),
        .panelOutline = Color::gray(panel, kPanelOutlineAlpha)};
}

void drawPanel(const TextCardLayout& layout, const Colors& colors, Canvas& target)
{
    const Rect inside = {1, 1, layout.place.w - 2, layout.place.h - 2};
    const double radius = std::min(kPanelCorner * layout.titleFont.size, layout.place.h / 2);
    const Path panel = Path().roundedRect(inside, radius);
    target.fill(panel, colors.panel);
    target.stroke(panel, {.width = kPanelOutline}, colors.panelOutline);
}

/// The drawing's shape, blurred, in one colour.
Canvas glowOf(const Canvas& drawing, double sigma, const Color& color)
{
    Canvas glow(drawing.width(), drawing.height());
    Picture shape(drawing.width(), drawing.height(), Layout::Rgb);
    const Plane<std::uint8_t> alpha = shape.plane(0);
    const auto pixels = drawing.pixels();
    for (int y = 0; y < alpha.height; ++y)
        for (int x = 0; x < alpha.width; ++x)
            alpha.row(y)[x] = static_cast<std::uint8_t>(pixels.row(y)[x] >> 24);
    gaussianBlur(alpha, sigma, BlurEdge::Zero);
    const auto glowing = glow.pixels();
    for (int y = 0; y < alpha.height; ++y)
        for (int x = 0; x < alpha.width; ++x) {
            const double a = alpha.row(y)[x] * color.alpha;
            const auto byte = [a](double share) {
                return static_cast<std::uint32_t>(std::lround(a * share));
            };
            glowing.row(y)[x] =
                byte(1) << 24 | byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue);
        }
    return glow;
}

/// A title line above its own glow, which is thereby a little stronger along the outlines.
void drawGlowing(
    const TextCardLayout::Line& line,
    const Font& font,
    const Colors& colors,
    Canvas& target,
    Vec2 offset)
{
    const Vec2 baseline = {line.baseline.x + offset.x, line.baseline.y + offset.y};
    Canvas text(target.width(), target.height());
    text.drawText(line.text, font, baseline, colors.ink);
    const Canvas glow = glowOf(text, kGlowSigma * font.size, colors.accent.withAlpha(kGlowAlpha));
    target.drawImage(glow, {-offset.x, -offset.y, double(glow.width()), double(glow.height())});
    target.drawText(line.text, font, line.baseline, colors.ink);
    target.drawText(line.text, font, line.baseline, colors.ink);
}

void drawPrompted(
    const TextCardLayout::Line& line, const Font& font, const Colors& colors, Canvas& target)
{
    target.drawText(kCardPrompt, font, line.baseline, colors.accent);
    const std::string_view text = line.text;
    if (!text.starts_with(kCardPrompt))
        return; // the prompt has the line to itself
    const double width = measureText(kCardPrompt, font).width;
    target.drawText(
        text.substr(kCardPrompt.size()),
        font,
        {line.baseline.x + width, line.baseline.y},
        colors.ink);
}

} // namespace

void draw(
    const TextCardLayout& layout, const Color& accent, Ground ground, Canvas& target, Vec2 origin)
{
    const Colors colors = colorsOn(ground, accent);
    const Vec2 offset = {layout.place.x - origin.x, layout.place.y - origin.y};
    const CanvasScope scope(target);
    target.translate(offset);
    if (layout.design == CardDesign::Pill)
        drawPanel(layout, colors, target);
    if (layout.bar)
        target.fill(Path().rect(*layout.bar), colors.accent);
    for (const TextCardLayout::Line& line : layout.lines) {
        if (!line.isTitle)
            target.drawText(
                line.text,
                layout.subtitleFont,
                line.baseline,
                colors.ink.withAlpha(kSubtitleAlpha));
        else if (layout.design == CardDesign::Glow)
            drawGlowing(line, layout.titleFont, colors, target, offset);
        else if (layout.design == CardDesign::Mono && &line == &layout.lines.front())
            drawPrompted(line, layout.titleFont, colors, target);
        else
            target.drawText(line.text, layout.titleFont, line.baseline, colors.ink);
    }
}

} // namespace zento
