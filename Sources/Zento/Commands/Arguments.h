#pragma once

#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// The command line does not say what to do: exit 2. `what()` is one sentence.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One option a command knows.
struct OptionSpec {
    std::string_view name;  // "--size"
    std::string_view value; // what the usage calls its value: "WxH"; empty: it takes none
};

/// The words behind a command: options in any order, as "--size 1920x1080" or "--size=1920x1080",
/// and the rest. Everything behind "--" is rest.
///
/// Throws `UsageError` for an option that is unknown, given twice, lacks its value or has one it
/// does not take.
class Arguments {
public:
    Arguments(std::span<const std::string_view> words, std::span<const OptionSpec> options);

    bool has(std::string_view option) const { return m_values.contains(option); }
    std::optional<std::string> value(std::string_view option) const;

    /// A value read by one of the functions below, or nothing without the option.
    template <typename Read>
    auto read(std::string_view option, Read parse) const -> std::optional<decltype(parse("", ""))>
    {
        const auto text = value(option);
        if (!text) {
            return std::nullopt;
        }
        return parse(option, *text);
    }

    /// The one word that is no option. Throws `UsageError` unless there is exactly one.
    std::string only(std::string_view meaning) const;

    /// Throws `UsageError` if there is a word that is no option.
    void expectNone() const;

private:
    std::map<std::string, std::string, std::less<>> m_values;
    std::vector<std::string> m_rest;
};

struct Size {
    int width = 0;
    int height = 0;
};

/// Throw `UsageError`, naming the option, for a text that is not wholly such a value.
double readPositive(std::string_view option, std::string_view text);
int readIndex(std::string_view option, std::string_view text); // [0, ∞)
Size readSize(std::string_view option, std::string_view text); // "1920x1080"
Rect readRect(std::string_view option, std::string_view text); // "X,Y,W,H", W and H above 0
std::uint32_t
readWindow(std::string_view option, std::string_view text); // "65011713", "0x3e00001"; not 0

} // namespace zento
