#include "ZentoRender/TextCardLayout.h"

#include "ZentoRender/BalancedLines.h"

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

enum class Alignment { Center, Left };

/// What tells the designs apart.
struct Look {
    double titleSize = 0.082;    // of the frame's height
    double subtitleSize = 0.034; // of the frame's height
    FontRole role = FontRole::System;
    FontWeight subtitleWeight = FontWeight::Medium;
    double titleKerning = -0.02; // in title sizes
    Alignment alignment = Alignment::Center;
    double widthLimit = 0.8;     // of the frame's width
    std::optional<Vec2> padding; // in title sizes; kPadding if absent
};

constexpr Vec2 kPadding = {8, 8};         // pixels
constexpr Vec2 kLeftPlace = {0.09, 0.14}; // of the frame, from the left and from the bottom

// In title sizes.
constexpr double kBetweenTitleLines = 0.08;
constexpr double kAboveSubtitle = 0.45;
constexpr Vec2 kEditorialBar = {1.6, 0.12};
constexpr double kBelowEditorialBar = 0.45;
constexpr Vec2 kUnderline = {2.2, 0.09};
constexpr double kAboveUnderline = 0.13; // from the descent
constexpr double kUnderlineSpace = 0.35;

constexpr double kUnderlineShare = 0.38;  // of the line above it, at least
constexpr double kSubtitleKerning = 0.01; // in subtitle sizes

Look lookOf(CardDesign design)
{
    Look look;
    switch (design) {
    case CardDesign::Editorial:
        look.role = FontRole::Serif;
        look.titleKerning = -0.01;
        look.alignment = Alignment::Left;
        look.widthLimit = 0.62;
        break;
    case CardDesign::Mono:
        look.titleSize = 0.062;
        look.subtitleSize = 0.03;
        look.role = FontRole::Monospaced;
        look.subtitleWeight = FontWeight::Regular;
        look.alignment = Alignment::Left;
        look.widthLimit = 0.62;
        break;
    case CardDesign::Glow:
        look.role = FontRole::Rounded;
        look.padding = {1, 0.6};
        break;
    case CardDesign::Pill:
        look.padding = {0.9, 0.5};
        break;
    case CardDesign::Classic:
    case CardDesign::Underline:
        break;
    }
    return look;
}

struct MeasuredLine {
    std::string text;
    bool isTitle = true;
    TextMetrics metrics;
    double gapAfter = 0;
};

std::vector<MeasuredLine>
measuredLines(const TextCard& card, const TextCardLayout& layout, double widthLimit)
{
    const double titleSize = layout.titleFont.size;
    const bool isMono = layout.design == CardDesign::Mono;
    const std::string title = (isMono ? std::string(kCardPrompt) : "") + card.title;
    std::vector<MeasuredLine> lines;
    for (std::string& line : balancedLines(title, layout.titleFont, widthLimit)) {
        const TextMetrics metrics = measureText(line, layout.titleFont);
        lines.push_back(
            {.text = std::move(line),
             .metrics = metrics,
             .gapAfter = kBetweenTitleLines * titleSize});
    }
    const bool hasSubtitle = card.subtitle && !card.subtitle->empty();
    lines.back().gapAfter =
        (hasSubtitle ? kAboveSubtitle * titleSize : 0)
        + (layout.design == CardDesign::Underline ? kUnderlineSpace * titleSize : 0);
    if (hasSubtitle)
        lines.push_back(
            {.text = *card.subtitle,
             .isTitle = false,
             .metrics = measureText(*card.subtitle, layout.subtitleFont)});
    return lines;
}

/// Whole pixels keep the text sharp.
Vec2 placeOf(Alignment alignment, double width, double height, const OutputSpec& output)
{
    const Vec2 place =
        alignment == Alignment::Left
            ? Vec2{kLeftPlace.x * output.width, (1 - kLeftPlace.y) * output.height - height}
            : Vec2{(output.width - width) / 2, (output.height - height) / 2};
    return {std::round(place.x), std::round(place.y)};
}

Rect underline(const TextCardLayout::Line& line, double descent, double titleSize, double cardWidth)
{
    const double width = std::max(kUnderline.x * titleSize, kUnderlineShare * line.width);
    return {
        (cardWidth - width) / 2,
        line.baseline.y + descent + kAboveUnderline * titleSize,
        width,
        kUnderline.y * titleSize};
}

} // namespace

CardDesign cardDesign(std::string_view word)
{
    if (word == "editorial")
        return CardDesign::Editorial;
    if (word == "mono")
        return CardDesign::Mono;
    if (word == "glow")
        return CardDesign::Glow;
    if (word == "pill")
        return CardDesign::Pill;
    if (word == "underline")
        return CardDesign::Underline;
    return CardDesign::Classic;
}

TextCardLayout layOut(const TextCard& card, const OutputSpec& output)
{
    TextCardLayout layout;
    layout.design = cardDesign(card.design);
    const Look look = lookOf(layout.design);
    const double titleSize = look.titleSize * output.height;
    const double subtitleSize = look.subtitleSize * output.height;
    layout.titleFont = {look.role, titleSize, FontWeight::Bold, look.titleKerning * titleSize};
    layout.subtitleFont = {
        look.role, subtitleSize, look.subtitleWeight, kSubtitleKerning * subtitleSize};
    const auto lines = measuredLines(card, layout, look.widthLimit * output.width);

    const Vec2 padding =
        look.padding ? Vec2{look.padding->x * titleSize, look.padding->y * titleSize} : kPadding;
    double top = padding.y;
    if (layout.design == CardDesign::Editorial) {
        layout.bar = {padding.x, top, kEditorialBar.x * titleSize, kEditorialBar.y * titleSize};
        top += (kEditorialBar.y + kBelowEditorialBar) * titleSize;
    }
    double widest = 0;
    for (const MeasuredLine& line : lines)
        widest = std::max(widest, line.metrics.width);
    const double width = std::ceil(widest + 2 * padding.x);

    for (const MeasuredLine& line : lines) {
        const double x =
            look.alignment == Alignment::Left ? padding.x : (width - line.metrics.width) / 2;
        layout.lines.push_back(
            {.text = line.text,
             .isTitle = line.isTitle,
             .width = line.metrics.width,
             .baseline = {x, std::round(top + line.metrics.ascent)}});
        top += line.metrics.ascent + line.metrics.descent + line.gapAfter;
        const bool isUnderlined = layout.design == CardDesign::Underline && line.isTitle
                                  && line.gapAfter > kBetweenTitleLines * titleSize;
        if (isUnderlined)
            layout.bar = underline(layout.lines.back(), line.metrics.descent, titleSize, width);
    }
    const double height = std::ceil(top + padding.y);
    const Vec2 place = placeOf(look.alignment, width, height, output);
    layout.place = {place.x, place.y, width, height};
    layout.restingPoint = look.alignment == Alignment::Left
                              ? Vec2{place.x, place.y + height}
                              : Vec2{place.x + width / 2, place.y + height / 2};
    return layout;
}

} // namespace zento
