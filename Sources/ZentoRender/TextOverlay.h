#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Font.h"
#include "ZentoRender/FrameValues.h"

#include <optional>
#include <string>
#include <vector>

namespace zento {

/// A text in its box over the film, as a `FrameRecipe` has it.
struct TextOverlay {
    enum class Kind {
        Keystroke,     // at the bottom, in the middle
        Caption,       // the same place
        RaisedCaption, // above a keystroke
        Chapter,       // at the top left
    };

    Kind kind = Kind::Caption;
    std::string text;
    double alpha = 1; // (0, 1]
    bool operator==(const TextOverlay&) const = default;
};

/// Those that are seen, from bottom to top. A keystroke raises the caption even where it has itself
/// faded out.
std::vector<TextOverlay> textOverlays(
    const std::optional<FrameText>& keystroke,
    const std::optional<FrameText>& caption,
    const std::optional<FrameText>& chapter);

/// One or two lines of text in a dark box, laid out for a frame of some size.
struct TextBox {
    struct Line {
        std::string text;
        Vec2 baseline; // where it begins, from the box's top-left corner
    };

    Rect place;              // in the frame; whole pixels
    double cornerRadius = 0; // pixels
    Color fill;
    Font font;
    std::vector<Line> lines;
};

/// All sizes derive from the output's height, so that a film looks the same at every size.
TextBox textBox(TextOverlay::Kind kind, const std::string& text, const OutputSpec& output);

/// Draws the box with its text; `origin` is the pixel of the frame at which `target` begins.
void draw(const TextBox& box, Canvas& target, Vec2 origin);

} // namespace zento
