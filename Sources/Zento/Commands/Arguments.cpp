#include "Zento/Commands/Arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ranges>

namespace zento {

namespace {

/// The whole text as a number; `base` for whole ones.
template <typename Number, typename... Base>
std::optional<Number> number(std::string_view text, Base... base)
{
    Number value{};
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, base...);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

UsageError wrongValue(std::string_view option, std::string_view text, std::string_view wanted)
{
    return UsageError(
        std::string(option) + " needs " + std::string(wanted) + ", not \"" + std::string(text)
        + "\"");
}

} // namespace

Arguments::Arguments(std::span<const std::string_view> words, std::span<const OptionSpec> options)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (word == "--") {
            m_rest.insert(
                m_rest.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            return;
        }
        if (!word.starts_with("--")) {
            m_rest.emplace_back(word);
            continue;
        }
        const std::size_t equals = word.find('=');
        const std::string name(word.substr(0, equals));
        const auto option = std::ranges::find(options, name, &OptionSpec::name);
        if (option == options.end()) {
            throw UsageError("there is no option " + name + " here");
        }
        const bool isInside = equals != std::string_view::npos;
        const bool takesValue = !option->value.empty();
        if (isInside && !takesValue) {
            throw UsageError(name + " takes no value");
        }
        if (takesValue && !isInside && i + 1 == words.size()) {
            throw UsageError(name + " needs a value");
        }
        std::string_view value;
        if (takesValue) {
            value = isInside ? word.substr(equals + 1) : words[++i];
        }
        if (!m_values.emplace(name, value).second) {
            throw UsageError(name + " is given twice");
        }
    }
}

std::optional<std::string> Arguments::value(std::string_view option) const
{
    const auto found = m_values.find(option);
    return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

std::string Arguments::only(std::string_view meaning) const
{
    if (m_rest.size() != 1) {
        throw UsageError(
            m_rest.empty() ? std::string(meaning) + " is missing"
                           : "only one " + std::string(meaning) + " can be given");
    }
    return m_rest.front();
}

void Arguments::expectNone() const
{
    if (!m_rest.empty()) {
        throw UsageError("\"" + m_rest.front() + "\" means nothing here");
    }
}

double readPositive(std::string_view option, std::string_view text)
{
    const auto value = number<double>(text);
    if (!value || !std::isfinite(*value) || *value <= 0) {
        throw wrongValue(option, text, "a number above 0");
    }
    return *value;
}

int readIndex(std::string_view option, std::string_view text)
{
    const auto value = number<int>(text);
    if (!value || *value < 0) {
        throw wrongValue(option, text, "a whole number from 0");
    }
    return *value;
}

Size readSize(std::string_view option, std::string_view text)
{
    const std::size_t times = text.find('x');
    const auto width = number<int>(text.substr(0, times));
    const auto height =
        times == std::string_view::npos ? std::nullopt : number<int>(text.substr(times + 1));
    if (!width || !height || *width <= 0 || *height <= 0) {
        throw wrongValue(option, text, "a size such as 1920x1080");
    }
    return {*width, *height};
}

Rect readRect(std::string_view option, std::string_view text)
{
    std::vector<double> values;
    for (const auto part : std::views::split(text, ',')) {
        const auto value = number<double>(std::string_view(part.begin(), part.end()));
        if (!value || !std::isfinite(*value)) {
            values.clear();
            break;
        }
        values.push_back(*value);
    }
    if (values.size() != 4) {
        throw wrongValue(option, text, "four numbers X,Y,W,H");
    }
    if (values[2] <= 0 || values[3] <= 0) {
        throw wrongValue(option, text, "a width and a height above 0");
    }
    return {values[0], values[1], values[2], values[3]};
}

std::uint32_t readWindow(std::string_view option, std::string_view text)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const auto value =
        isHex ? number<std::uint32_t>(text.substr(2), 16) : number<std::uint32_t>(text);
    if (!value || *value == 0) {
        throw wrongValue(option, text, "a window's number such as 65011713 or 0x3e00001");
    }
    return *value;
}

} // namespace zento
