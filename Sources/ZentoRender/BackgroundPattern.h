#pragma once

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Color.h"

#include <string_view>

namespace zento::BackgroundRenderer {

/// Draws the ink of a pattern: "dots", "grid", "diagonal", "waves", "hex", "rings", "checker",
/// "cross" or "halftone"; nothing for another word. The canvas has y up, its lower left corner at
/// (0, 0) and the size `w` by `h`; `tile` is the size of a cell, (0, ∞).
void drawPattern(
    std::string_view kind, Canvas& canvas, double w, double h, const Color& ink, double tile);

} // namespace zento::BackgroundRenderer
