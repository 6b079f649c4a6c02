#pragma once

#include "ZentoImaging/Font.h"

#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// A text on one line if it is no wider than `widthLimit` pixels, else split at spaces into two
/// lines: where the wider of them is narrowest, the earliest such place. Runs of spaces count as
/// one, line breaks and control characters as spaces. Two lines may still be wider than the limit;
/// a single word has an empty line below it.
///
/// A text of n words is measured about log n times.
///
/// Threading: any thread.
std::vector<std::string> balancedLines(std::string_view text, const Font& font, double widthLimit);

} // namespace zento
