#include "ZentoCore/KeyCombo.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace zento {

namespace {

struct NamedKey {
    std::string_view name;
    int code = 0;
};

constexpr auto kKeys = std::to_array<NamedKey>({
    {"a", 0},      {"s", 1},      {"d", 2},       {"f", 3},       {"h", 4},      {"g", 5},
    {"z", 6},      {"x", 7},      {"c", 8},       {"v", 9},       {"b", 11},     {"q", 12},
    {"w", 13},     {"e", 14},     {"r", 15},      {"y", 16},      {"t", 17},     {"o", 31},
    {"u", 32},     {"i", 34},     {"p", 35},      {"l", 37},      {"j", 38},     {"k", 40},
    {"n", 45},     {"m", 46},     {"1", 18},      {"2", 19},      {"3", 20},     {"4", 21},
    {"6", 22},     {"5", 23},     {"9", 25},      {"7", 26},      {"8", 28},     {"0", 29},
    {"=", 24},     {"-", 27},     {"]", 30},      {"[", 33},      {"'", 39},     {";", 41},
    {"\\", 42},    {",", 43},     {"/", 44},      {".", 47},      {"`", 50},     {"return", 36},
    {"tab", 48},   {"space", 49}, {"delete", 51}, {"escape", 53}, {"f5", 96},    {"f6", 97},
    {"f7", 98},    {"f3", 99},    {"f8", 100},    {"f9", 101},    {"f11", 103},  {"f10", 109},
    {"f12", 111},  {"f4", 118},   {"f2", 120},    {"f1", 122},    {"left", 123}, {"right", 124},
    {"down", 125}, {"up", 126},
});

struct NamedLabel {
    std::string_view name;
    std::string_view label;
};

constexpr auto kLabels = std::to_array<NamedLabel>({
    {"space", "Space"},
    {"return", "↩"},
    {"delete", "⌫"},
    {"escape", "⎋"},
    {"tab", "⇥"},
    {"up", "↑"},
    {"down", "↓"},
    {"left", "←"},
    {"right", "→"},
});

} // namespace

std::string KeyCombo::display() const
{
    std::string text;
    text += control ? "⌃" : "";
    text += option ? "⌥" : "";
    text += shift ? "⇧" : "";
    text += command ? "⌘" : "";
    return text + keyLabel(key);
}

std::optional<int> KeyCombo::carbonKeyCode() const
{
    const auto found = std::ranges::find(kKeys, std::string_view(key), &NamedKey::name);
    return found == kKeys.end() ? std::nullopt : std::optional(found->code);
}

unsigned KeyCombo::carbonModifiers() const
{
    return (command ? 256U : 0U) + (shift ? 512U : 0U) + (option ? 2048U : 0U)
           + (control ? 4096U : 0U);
}

std::string keyLabel(std::string_view key)
{
    const auto found = std::ranges::find(kLabels, key, &NamedLabel::name);
    if (found != kLabels.end()) {
        return std::string(found->label);
    }
    std::string label(key);
    std::ranges::transform(
        label, label.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return label;
}

std::optional<std::string> keyName(int keyCode)
{
    const auto found = std::ranges::find(kKeys, keyCode, &NamedKey::code);
    return found == kKeys.end() ? std::nullopt : std::optional(std::string(found->name));
}

} // namespace zento
