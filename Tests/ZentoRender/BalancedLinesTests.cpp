#include "TestSupport/Random.h"
#include "ZentoRender/BalancedLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace zento {
namespace {

using testing::ElementsAre;

constexpr Font kFont = {FontRole::System, 30, FontWeight::Semibold};

/// Every split there is, by the plain rule.
std::vector<std::string> bestOfAll(const std::vector<std::string>& words)
{
    std::vector<std::string> best;
    double narrowest = 0;
    for (std::size_t i = 1; i < words.size(); ++i) {
        std::vector<std::string> lines(2);
        for (std::size_t w = 0; w < words.size(); ++w) {
            std::string& line = lines[w < i ? 0 : 1];
            line += (line.empty() ? "" : " ") + words[w];
        }
        const double width =
            std::max(measureText(lines[0], kFont).width, measureText(lines[1], kFont).width);
        if (best.empty() || width < narrowest) {
            best = lines;
            narrowest = width;
        }
    }
    return best;
}

TEST(BalancedLinesTest, NoSplitHasANarrowerWiderLine)
{
    constexpr std::array kWords = {
        "a",
        "aa",
        "the",
        "caption",
        "Wörterbuchverlag",
        "中文字幕",
        "مرحبا",
        "👍🏽",
        "e\u0301",
        "—"};
    test::Random random(7);
    for (int i = 0; i < 300; ++i) {
        std::vector<std::string> words;
        std::string text;
        for (std::size_t n = 2 + random.below(11); n > 0; --n) {
            words.emplace_back(random.pick(kWords));
            text +=
                words.back() + std::string(1 + random.below(3), random.chance(0.2) ? '\n' : ' ');
        }
        EXPECT_EQ(balancedLines(text, kFont, 0), bestOfAll(words)) << text;
    }
    EXPECT_THAT(balancedLines("aa aa aa", kFont, 0), ElementsAre("aa", "aa aa")) << "the earliest";
}

TEST(BalancedLinesTest, SplitsOnlyWhatIsTooWide)
{
    const std::string text = "  some  words\n";
    const double width = measureText("  some  words ", kFont).width;
    EXPECT_THAT(balancedLines(text, kFont, width), ElementsAre("  some  words "));
    EXPECT_THAT(balancedLines(text, kFont, width - 0.1), ElementsAre("some", "words"));
    EXPECT_THAT(balancedLines(" word ", kFont, 1), ElementsAre("word", ""));
    EXPECT_THAT(balancedLines("   ", kFont, 1), ElementsAre("", ""));
    EXPECT_THAT(balancedLines("", kFont, 0), ElementsAre(""));
}

} // namespace
} // namespace zento
