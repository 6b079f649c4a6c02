#include "ZentoCore/Json/JsonWriter.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/Text.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cmath>

namespace zento {

void JsonWriter::begin(char bracket, bool isObject)
{
    beforeValue();
    m_text += bracket;
    m_levels.push_back({isObject, true, {}});
}

void JsonWriter::end(char bracket)
{
    assert(!m_levels.empty() && !m_afterKey);
    const bool wasEmpty = m_levels.back().isEmpty;
    m_levels.pop_back();
    if (!wasEmpty) {
        breakLine();
    }
    m_text += bracket;
}

void JsonWriter::key(std::string_view name)
{
    assert(!m_levels.empty() && m_levels.back().isObject && !m_afterKey);
    Level& level = m_levels.back();
    assert(
        (m_keyOrder == KeyOrder::AsGiven || level.isEmpty || level.lastKey < name)
        && "keys stand in ascending order");
    separate();
    level.lastKey = name;
    writeString(name);
    m_text += m_form == Form::Document ? ": " : ":";
    m_afterKey = true;
}

void JsonWriter::value(double number)
{
    if (!std::isfinite(number)) {
        throw Error(ErrorCode::kUndecodable, "JSON has no form for a number that is not finite");
    }
    beforeValue();
    // Plain notation in the range people read as plain, so that whole numbers have no fraction.
    const double size = std::abs(number);
    const bool isPlain = size == 0 || (size >= 1e-4 && size < 9007199254740992.0);
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(
        buffer.begin(),
        buffer.end(),
        number,
        isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    m_text.append(buffer.data(), result.ptr);
}

void JsonWriter::value(int number)
{
    beforeValue();
    m_text += std::to_string(number);
}

void JsonWriter::value(bool flag)
{
    beforeValue();
    m_text += flag ? "true" : "false";
}

void JsonWriter::value(std::string_view text)
{
    beforeValue();
    writeString(text);
}

void JsonWriter::beforeValue()
{
    if (m_afterKey) {
        m_afterKey = false;
    } else if (!m_levels.empty()) {
        assert(!m_levels.back().isObject && "a value in an object has a key");
        separate();
    }
}

void JsonWriter::separate()
{
    if (!m_levels.back().isEmpty) {
        m_text += ',';
    }
    m_levels.back().isEmpty = false;
    breakLine();
}

void JsonWriter::breakLine()
{
    if (m_form == Form::Document) {
        m_text += '\n';
        m_text.append(2 * m_levels.size(), ' ');
    }
}

namespace {

bool isPlainAscii(std::string_view text)
{
    return std::ranges::all_of(
        text, [](char c) { return c >= 0x20 && c < 0x7f && c != '"' && c != '\\' && c != '/'; });
}

void appendEscaped(std::string& out, char c, JsonWriter::Form form)
{
    switch (c) {
    case '"':
        out += "\\\"";
        return;
    case '\\':
        out += "\\\\";
        return;
    case '/':
        out += form == JsonWriter::Form::Document ? "\\/" : "/";
        return;
    case '\b':
        out += "\\b";
        return;
    case '\f':
        out += "\\f";
        return;
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        break;
    }
    if (static_cast<unsigned char>(c) < 0x20) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        out += "\\u00";
        out += kDigits[static_cast<unsigned char>(c) >> 4U];
        out += kDigits[static_cast<unsigned char>(c) & 15U];
        return;
    }
    out += c;
}

} // namespace

void JsonWriter::writeString(std::string_view text)
{
    m_text += '"';
    if (isPlainAscii(text)) {
        m_text += text;
    } else {
        for (const char c : wellFormed(text)) {
            appendEscaped(m_text, c, m_form);
        }
    }
    m_text += '"';
}

} // namespace zento
