#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// A typeface by its job. A face that is not installed is replaced by the system's sans-serif,
/// monospaced or serif one; characters a face lacks come from other installed fonts.
enum class FontRole {
    System,     // Inter
    Monospaced, // JetBrains Mono
    Serif,      // Noto Serif
    Rounded,    // Quicksand
};

enum class FontWeight { Regular = 400, Medium = 500, Semibold = 600, Bold = 700 };

struct Font {
    FontRole role = FontRole::System;
    double size = 16; // pixels per em, (0, ∞)
    FontWeight weight = FontWeight::Regular;
    double kerning = 0; // pixels added between neighbouring characters

    bool operator==(const Font&) const = default;
};

/// Pixels. They grow in proportion to `Font::size`: nothing is hinted or rounded to the pixel grid.
struct TextMetrics {
    double width = 0;   // the advance of the line
    double ascent = 0;  // above the baseline, of the line and not of its glyphs
    double descent = 0; // below the baseline, positive

    bool operator==(const TextMetrics&) const = default;
};

/// Measures text on one line. An empty text has no width and the font's ascent and descent.
///
/// Threading: any thread; each keeps its own set of fonts, made at its first use.
TextMetrics measureText(std::string_view text, const Font& font);

/// The typefaces of the roles that are not installed, so that others stand in for them.
std::vector<std::string> missingTypefaces();

} // namespace zento
