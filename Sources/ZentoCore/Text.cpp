#include "ZentoCore/Text.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

namespace zento {

namespace {

struct CodePoint {
    utf8proc_int32_t value = -1; // -1 for an ill-formed byte
    std::size_t length = 1;      // bytes
};

CodePoint codePointAt(std::string_view text, std::size_t offset)
{
    CodePoint result;
    const auto length = utf8proc_iterate(
        reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + offset,
        static_cast<utf8proc_ssize_t>(text.size() - offset),
        &result.value);
    if (length <= 0) {
        return {};
    }
    result.length = static_cast<std::size_t>(length);
    return result;
}

/// Calls `visit(offset)` at the start of every character.
template <typename Visit>
void forEachCharacter(std::string_view text, Visit visit)
{
    utf8proc_int32_t state = 0;
    utf8proc_int32_t previous = -1;
    for (std::size_t offset = 0; offset < text.size();) {
        const CodePoint current = codePointAt(text, offset);
        const bool continues =
            previous >= 0 && current.value >= 0
            && !utf8proc_grapheme_break_stateful(previous, current.value, &state);
        if (!continues) {
            visit(offset);
        }
        if (current.value < 0) {
            state = 0;
        }
        previous = current.value;
        offset += current.length;
    }
}

bool isWhiteSpace(utf8proc_int32_t c)
{
    if ((c >= 0x09 && c <= 0x0d) || c == 0x85 || c == 0x2028 || c == 0x2029) {
        return true;
    }
    return c >= 0 && utf8proc_category(c) == UTF8PROC_CATEGORY_ZS;
}

bool isControl(utf8proc_int32_t c)
{
    return (c >= 0 && c < 0x20) || (c >= 0x7f && c <= 0x9f) || c == 0x2028 || c == 0x2029;
}

} // namespace

std::size_t characterCount(std::string_view text)
{
    std::size_t count = 0;
    forEachCharacter(text, [&](std::size_t) { ++count; });
    return count;
}

std::vector<std::size_t> characterBounds(std::string_view text)
{
    std::vector<std::size_t> bounds;
    forEachCharacter(text, [&](std::size_t offset) { bounds.push_back(offset); });
    bounds.push_back(text.size());
    return bounds;
}

std::string_view lastCharacters(std::string_view text, std::size_t count)
{
    const auto bounds = characterBounds(text);
    const std::size_t characters = bounds.size() - 1;
    return text.substr(bounds[characters - std::min(count, characters)]);
}

std::string_view trimmed(std::string_view text)
{
    std::size_t begin = text.size();
    std::size_t end = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        const CodePoint current = codePointAt(text, offset);
        if (!isWhiteSpace(current.value)) {
            begin = std::min(begin, offset);
            end = offset + current.length;
        }
        offset += current.length;
    }
    return begin < end ? text.substr(begin, end - begin) : std::string_view();
}

std::string lowerCased(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const CodePoint current = codePointAt(text, offset);
        if (current.value < 0) {
            result += text[offset];
        } else {
            std::array<utf8proc_uint8_t, 4> bytes{};
            const auto length = utf8proc_encode_char(utf8proc_tolower(current.value), bytes.data());
            result.append(bytes.begin(), bytes.begin() + length);
        }
        offset += current.length;
    }
    return result;
}

std::string wellFormed(std::string_view text)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    std::string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const CodePoint current = codePointAt(text, offset);
        result += current.value < 0 ? kReplacement : text.substr(offset, current.length);
        offset += current.length;
    }
    return result;
}

std::string onOneLine(std::string_view text)
{
    std::string line;
    line.reserve(text.size());
    const std::string valid = wellFormed(text);
    for (std::size_t offset = 0; offset < valid.size();) {
        const CodePoint current = codePointAt(valid, offset);
        const std::string_view bytes = std::string_view(valid).substr(offset, current.length);
        offset += current.length;
        if (bytes == "\r" && offset < valid.size() && valid[offset] == '\n') {
            continue;
        }
        line += isControl(current.value) ? " " : bytes;
    }
    return line;
}

} // namespace zento
