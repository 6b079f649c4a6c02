#include "Zento/Commands/Arguments.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace zento {
namespace {

constexpr std::array<OptionSpec, 3> kOptions{{{"--size", "WxH"}, {"--fps", "N"}, {"--gif", ""}}};

Arguments parsed(const std::vector<std::string_view>& words)
{
    return {words, kOptions};
}

TEST(Arguments, takeOptionsInAnyPlaceAndForm)
{
    const Arguments arguments = parsed({"--fps", "30", "a.zento", "--size=1920x1080"});
    EXPECT_EQ(arguments.value("--fps"), "30");
    EXPECT_EQ(arguments.only("bundle"), "a.zento");
    EXPECT_EQ(arguments.read("--size", readSize)->height, 1080);
    EXPECT_EQ(parsed({"--", "--fps"}).only("bundle"), "--fps");
    EXPECT_NO_THROW(parsed({"--fps", "1"}).expectNone());
    EXPECT_TRUE(parsed({"--gif", "a.zento"}).has("--gif"));
    EXPECT_EQ(parsed({"--gif", "a.zento"}).only("bundle"), "a.zento");
    EXPECT_FALSE(arguments.has("--gif"));
}

TEST(Arguments, readPlacesAndWindows)
{
    EXPECT_EQ(readRect("--area", "10,-20.5,300,1e2"), (Rect{10, -20.5, 300, 100}));
    EXPECT_EQ(readWindow("--window", "65011713"), 65011713U);
    EXPECT_EQ(readWindow("--window", "0x3e00001"), 65011713U);
    EXPECT_EQ(readWindow("--window", "0XFFFFFFFF"), 4294967295U);
    for (const char* const text :
         {"",
          "1,2,3",
          "1,2,3,4,5",
          "1,2,3,",
          "1,,3,4",
          "1 ,2,3,4",
          "1,2,0,4",
          "1,2,3,-4",
          "nan,2,3,4",
          "1,2,inf,4",
          "0x1,2,3,4"}) {
        EXPECT_THROW(readRect("--area", text), UsageError) << text;
    }
    for (const char* const text :
         {"", "0", "0x", "0x0", "-1", "0x-1", "3e00001", "4294967296", "1 "}) {
        EXPECT_THROW(readWindow("--window", text), UsageError) << text;
    }
}

TEST(Arguments, refuseWhatMeansNothing)
{
    struct Case {
        std::string name;
        std::vector<std::string_view> words;
    };
    for (const auto& [name, words] : std::initializer_list<Case>{
             {"unknown option", {"a", "--speed", "2"}},
             {"value missing", {"a", "--fps"}},
             {"value not wanted", {"a", "--gif=yes"}},
             {"given twice", {"a", "--fps", "1", "--fps=2"}},
             {"no bundle", {}},
             {"two bundles", {"a", "b"}},
             {"no number", {"a", "--fps", "fast"}},
             {"number with a tail", {"a", "--fps", "60fps"}},
             {"not above zero", {"a", "--fps", "0"}},
             {"not finite", {"a", "--fps", "inf"}},
             {"half a size", {"a", "--size", "1920"}},
             {"no size", {"a", "--size", "1920x-1"}},
             {"size with a tail", {"a", "--size", "1920x1080x2"}}}) {
        const auto use = [&words] {
            const Arguments arguments = parsed(words);
            arguments.only("bundle");
            arguments.read("--size", readSize);
            arguments.read("--fps", readPositive);
        };
        EXPECT_THROW(use(), UsageError) << name;
    }
    EXPECT_THROW(parsed({"a"}).expectNone(), UsageError);
    EXPECT_THROW(readIndex("--screen", "-1"), UsageError);
}

} // namespace
} // namespace zento
