#include "ZentoRender/TextOverlay.h"

#include "ZentoRender/BalancedLines.h"

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

constexpr double kInvisible = 0.01;
constexpr double kOpaque = 0.999;

constexpr Color kBoxColor = {0.06, 0.07, 0.10};
constexpr Color kTextColor = {1, 1, 1};

/// How a kind of text looks. Lengths are in the size of its font.
struct Look {
    FontRole role = FontRole::System;
    double size = 0; // of the canvas's height
    double kerning = 0;
    double padX = 0;
    double padY = 0;
    double boxAlpha = 1;
};

constexpr double kCaptionLineGap = 0.25;
constexpr double kCaptionCorner = 0.55;
constexpr double kCaptionWidth = 0.72; // of the canvas's width

Look lookOf(TextOverlay::Kind kind)
{
    switch (kind) {
    case TextOverlay::Kind::Keystroke:
        return {
            .role = FontRole::Monospaced,
            .size = 0.032,
            .padX = 0.9,
            .padY = 0.5,
            .boxAlpha = 0.78};
    case TextOverlay::Kind::Chapter:
        return {.size = 0.028, .kerning = 0.02, .padX = 0.8, .padY = 0.42, .boxAlpha = 0.66};
    case TextOverlay::Kind::Caption:
    case TextOverlay::Kind::RaisedCaption:
        break;
    }
    return {.size = 0.034, .padX = 0.85, .padY = 0.45, .boxAlpha = 0.72};
}

bool isCaption(TextOverlay::Kind kind)
{
    return kind == TextOverlay::Kind::Caption || kind == TextOverlay::Kind::RaisedCaption;
}

Font fontOf(const Look& look, double outH)
{
    const double size = look.size * outH;
    return {
        .role = look.role,
        .size = size,
        .weight = FontWeight::Semibold,
        .kerning = look.kerning * size};
}

constexpr double kLowest = 0.055; // of the frame's height, from its bottom
constexpr double kRaised = 0.125;

/// How far above the bottom a raised caption ends: higher where the keystroke's font has taller
/// lines than that leaves room for.
double raisedBottom(double outH)
{
    const Look look = lookOf(TextOverlay::Kind::Keystroke);
    const TextMetrics line = measureText("", fontOf(look, outH));
    const double keystroke =
        std::ceil(line.ascent + line.descent + 2 * look.padY * look.size * outH);
    return std::max(kRaised * outH, kLowest * outH + keystroke);
}

/// Where a box of that size begins. Whole pixels keep its text sharp.
Vec2 placeOf(TextOverlay::Kind kind, double width, double height, const OutputSpec& output)
{
    const double middle = (output.width - width) * 0.5;
    Vec2 place;
    switch (kind) {
    case TextOverlay::Kind::Keystroke:
    case TextOverlay::Kind::Caption:
        place = {middle, output.height - kLowest * output.height - height};
        break;
    case TextOverlay::Kind::RaisedCaption:
        place = {middle, output.height - raisedBottom(output.height) - height};
        break;
    case TextOverlay::Kind::Chapter:
        place = {0.035 * output.width, 0.045 * output.height};
        break;
    }
    return {std::round(place.x), std::round(place.y)};
}

} // namespace

std::vector<TextOverlay> textOverlays(
    const std::optional<FrameText>& keystroke,
    const std::optional<FrameText>& caption,
    const std::optional<FrameText>& chapter)
{
    std::vector<TextOverlay> seen;
    const auto add = [&](TextOverlay::Kind kind, const std::optional<FrameText>& text) {
        if (text && text->alpha > kInvisible)
            seen.push_back(
                {.kind = kind,
                 .text = text->text,
                 .alpha = text->alpha < kOpaque ? text->alpha : 1});
    };
    add(TextOverlay::Kind::Keystroke, keystroke);
    add(keystroke ? TextOverlay::Kind::RaisedCaption : TextOverlay::Kind::Caption, caption);
    add(TextOverlay::Kind::Chapter, chapter);
    return seen;
}

TextBox textBox(TextOverlay::Kind kind, const std::string& text, const OutputSpec& output)
{
    const Look look = lookOf(kind);
    const double size = look.size * output.height;
    TextBox box;
    box.fill = kBoxColor.withAlpha(look.boxAlpha);
    box.font = fontOf(look, output.height);
    const std::vector<std::string> lines =
        isCaption(kind) ? balancedLines(text, box.font, kCaptionWidth * output.width)
                        : std::vector{text};

    std::vector<double> widths;
    TextMetrics metrics; // the last line's ascent and descent serve for all
    for (const std::string& line : lines) {
        metrics = measureText(line, box.font);
        widths.push_back(metrics.width);
    }
    const double lineHeight = metrics.ascent + metrics.descent;
    const double gap = kCaptionLineGap * size;
    const double count = static_cast<double>(lines.size());
    const double textHeight = lineHeight * count + gap * (count - 1);
    const double width = std::ceil(std::ranges::max(widths) + 2 * look.padX * size);
    const double height = std::ceil(textHeight + 2 * look.padY * size);
    const Vec2 origin = placeOf(kind, width, height, output);
    box.place = {origin.x, origin.y, width, height};
    box.cornerRadius = height / 2 - 1;
    if (isCaption(kind))
        box.cornerRadius = std::min(box.cornerRadius, kCaptionCorner * size);

    double top = (height - textHeight) / 2;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        box.lines.push_back(
            {.text = lines[i],
             .baseline = {(width - widths[i]) / 2, std::round(top + metrics.ascent)}});
        top += lineHeight + gap;
    }
    return box;
}

void draw(const TextBox& box, Canvas& target, Vec2 origin)
{
    const CanvasScope scope(target);
    target.translate({box.place.x - origin.x, box.place.y - origin.y});
    const Rect inside = {1, 1, box.place.w - 2, box.place.h - 2};
    target.fill(Path().roundedRect(inside, box.cornerRadius), box.fill);
    for (const TextBox::Line& line : box.lines)
        target.drawText(line.text, box.font, line.baseline, kTextColor);
}

} // namespace zento
