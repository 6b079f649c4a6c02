#include "ZentoCapture/KeyLabel.h"

#include <array>
#include <string_view>
#include <utility>

namespace zento::KeyLabel {

namespace {

constexpr std::array<std::pair<std::int64_t, std::string_view>, 73> kKeyNames{{
    {0, "A"},    {1, "S"},    {2, "D"},     {3, "F"},     {4, "H"},     {5, "G"},    {6, "Z"},
    {7, "X"},    {8, "C"},    {9, "V"},     {11, "B"},    {12, "Q"},    {13, "W"},   {14, "E"},
    {15, "R"},   {16, "Y"},   {17, "T"},    {18, "1"},    {19, "2"},    {20, "3"},   {21, "4"},
    {22, "5"},   {23, "6"},   {24, "="},    {25, "9"},    {26, "7"},    {27, "-"},   {28, "8"},
    {29, "0"},   {30, "]"},   {31, "O"},    {32, "U"},    {33, "["},    {34, "I"},   {35, "P"},
    {36, "⏎"},   {37, "L"},   {38, "J"},    {39, "'"},    {40, "K"},    {41, ";"},   {42, "\\"},
    {43, ","},   {44, "/"},   {45, "N"},    {46, "M"},    {47, "."},    {48, "⇥"},   {49, "␣"},
    {50, "`"},   {51, "⌫"},   {53, "⎋"},    {96, "F5"},   {97, "F6"},   {98, "F7"},  {99, "F3"},
    {100, "F8"}, {101, "F9"}, {103, "F11"}, {109, "F10"}, {111, "F12"}, {115, "↖"},  {116, "⇞"},
    {117, "⌦"},  {118, "F4"}, {119, "↘"},   {120, "F2"},  {121, "⇟"},   {122, "F1"}, {123, "←"},
    {124, "→"},  {125, "↓"},  {126, "↑"},
}};

std::string_view keyName(std::int64_t keyCode)
{
    for (const auto& [code, name] : kKeyNames) {
        if (code == keyCode) {
            return name;
        }
    }
    return "·";
}

std::string prefix(std::uint64_t flags)
{
    std::string text;
    for (const auto& [flag, glyph] : {
             std::pair{KeyFlag::kControl, "⌃"},
             std::pair{KeyFlag::kOption, "⌥"},
             std::pair{KeyFlag::kShift, "⇧"},
             std::pair{KeyFlag::kCommand, "⌘"},
         }) {
        if ((flags & flag) != 0) {
            text += glyph;
        }
    }
    return text;
}

} // namespace

std::string label(std::int64_t keyCode, std::uint64_t flags)
{
    const std::string_view name = keyName(keyCode);
    if (std::string text = prefix(flags); !text.empty()) {
        return text.append(name);
    }
    // Of the one-character names only the letters have a lower case.
    if (name.size() == 1 && name[0] >= 'A' && name[0] <= 'Z') {
        return {static_cast<char>(name[0] - 'A' + 'a')};
    }
    return std::string(name);
}

} // namespace zento::KeyLabel
