#include "ZentoCore/Text.h"

#include <gtest/gtest.h>

namespace zento {
namespace {

TEST(Characters, areWhatAReaderTakesForOne)
{
    struct Case {
        std::string_view name;
        std::string_view text;
        std::size_t count;
    };
    for (const auto& [name, text, count] : std::initializer_list<Case>{
             {"nothing", "", 0},
             {"letters", "abc", 3},
             {"symbol", "⌘C", 2},
             {"combining mark", "e\xCC\x81x", 2},
             {"family", "👩‍👩‍👧", 1},
             {"skin tone", "👍🏽!", 2},
             {"two flags", "🇩🇪🇫🇷", 2},
             {"syllable", "\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB", 1},
             {"line break", "a\r\nb", 3},
             {"mark on a space", " \xCC\x81", 1},
             {"ill-formed", "a\xff\xfe", 3}}) {
        EXPECT_EQ(characterCount(text), count) << name;
        EXPECT_EQ(characterBounds(text).size(), count + 1) << name;
    }
    EXPECT_EQ(lastCharacters("ab👩‍👩‍👧", 2), "b👩‍👩‍👧");
    EXPECT_EQ(lastCharacters("ab", 5), "ab");
}

TEST(Trimming, takesWhiteSpaceAndLineBreaksOnly)
{
    EXPECT_EQ(trimmed(" \t\xC2\xA0\xE3\x80\x80 a b \r\n\xE2\x80\xA8"), "a b");
    EXPECT_EQ(trimmed("\xE2\x80\x8B"), "\xE2\x80\x8B"); // zero width space is no white space
    EXPECT_EQ(trimmed(" \n "), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(OneLine, hasNoBreaksOrControls)
{
    EXPECT_EQ(onOneLine("a\nb\r\nc\rd\te"), "a b c d e");
    EXPECT_EQ(onOneLine(std::string_view("a\0b\x1b\x7f", 5)), "a b  ");
    EXPECT_EQ(onOneLine("a\xC2\x85\xE2\x80\xA8\xE2\x80\xA9z"), "a   z");
    EXPECT_EQ(
        onOneLine("\xFFn\xC3\xA9 e\xCC\x81 \xF0\x9F\x91\x8D"),
        "\xEF\xBF\xBDn\xC3\xA9 e\xCC\x81 \xF0\x9F\x91\x8D");
}

} // namespace
} // namespace zento
