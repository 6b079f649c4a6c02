#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

// Text is UTF-8. A character is what a reader takes for one: an extended grapheme cluster (UAX
// #29). An ill-formed byte counts as a character of its own.

std::size_t characterCount(std::string_view text);

/// The byte offset of every character's start, then the length of the text.
std::vector<std::size_t> characterBounds(std::string_view text);

/// The last `count` characters; the whole text if it has fewer.
std::string_view lastCharacters(std::string_view text, std::size_t count);

/// Without white space and line breaks at both ends: category Zs, tab, U+000A to U+000D, U+0085,
/// U+2028 and U+2029.
std::string_view trimmed(std::string_view text);

/// With every code point in its lower case, where it has one: no language's own rules.
std::string lowerCased(std::string_view text);

/// With every ill-formed sequence replaced by U+FFFD.
std::string wellFormed(std::string_view text);

/// Well-formed and on one line: every control character, line and paragraph separator is a space, a
/// carriage return with its line feed one.
std::string onOneLine(std::string_view text);

} // namespace zento
