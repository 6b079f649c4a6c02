#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Font.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// How a title or end card looks.
enum class CardDesign {
    Classic,   // a plain column in the middle
    Editorial, // serif at the lower left, below a bar
    Mono,      // a prompt in a terminal, at the lower left
    Glow,      // the title shines in the accent
    Pill,      // in a panel
    Underline, // a bar below the title
};

/// The design of a `TextCard::design`; a word not known is the plain column.
CardDesign cardDesign(std::string_view word);

/// What a title of `CardDesign::Mono` begins with.
inline constexpr std::string_view kCardPrompt = "\u203A ";

/// What lies behind a card, which decides on its ink.
enum class Ground { Dark, Light };

/// A text card laid out for a frame of some size. Lengths are pixels; all derive from the frame's
/// height, the places of the lines from the fonts' own metrics.
struct TextCardLayout {
    struct Line {
        std::string text;
        bool isTitle = true; // or the subtitle
        double width = 0;
        Vec2 baseline; // where the line begins, from the card's top-left corner
    };

    CardDesign design = CardDesign::Classic;
    Font titleFont;
    Font subtitleFont;
    std::vector<Line> lines;
    std::optional<Rect> bar; // in the accent, from the card's top-left corner
    Rect place;              // in the frame; whole pixels
    Vec2 restingPoint;       // in the frame: what stays where it is while the card settles
};

TextCardLayout layOut(const TextCard& card, const OutputSpec& output);

/// Draws a card; `origin` is the pixel of the frame at which `target` begins.
void draw(
    const TextCardLayout& layout, const Color& accent, Ground ground, Canvas& target, Vec2 origin);

} // namespace zento
