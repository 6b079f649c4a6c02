#include "ZentoCore/Error.h"
#include "ZentoEngine/MusicInfo.h"
#include "ZentoEngine/PlanConfig.h"

#include <gmock/gmock.h>

namespace zento::test {

namespace {

TEST(PlanConfig, IsWrittenInTheOrderOfTheRecordAndReadBack)
{
    PlanConfig config;
    config.zoomLevels = {1, 2.5};
    config.wideAfter = 0.1;
    config.showKeystrokes = true;
    const std::string text = encodePlanConfig(config);
    EXPECT_EQ(decodePlanConfig(text), config);
    std::size_t place = 0;
    for (const char* key :
         {"idleThreshold",
          "preHandle",
          "postHandle",
          "typingSpeed",
          "scrollSpeed",
          "zoomLevels",
          "focusFraction",
          "cameraLead",
          "minKeyframeSpacing",
          "wideAfter",
          "clickSFX",
          "whooshSFX",
          "showKeystrokes",
          "pointerOnClick"}) {
        const std::string quoted = std::string("\"") + key + "\"";
        const std::size_t found = text.find(quoted);
        ASSERT_NE(found, std::string::npos) << key;
        EXPECT_GT(found, place) << key;
        place = found;
        std::string without = text;
        EXPECT_THROW(decodePlanConfig(without.replace(found, quoted.size(), "\"other\"")), Error)
            << key;
    }
}

TEST(BeatGrid, IsReadBackAndNeedsEveryKey)
{
    const BeatGrid grid = {120.5, 0.49, 0.1, 61.25};
    EXPECT_EQ(decodeBeatGrid(encodeBeatGrid(grid)), grid);
    EXPECT_THROW(decodeBeatGrid(R"({"bpm":120,"period":0.5,"phase":0})"), Error);
}

TEST(MusicInfo, IsReadWithItsGrid)
{
    const auto music = EditPlanner::decodeMusicInfo(
        R"({"end":9,"file":"a.m4a","grid":{"bpm":120,"duration":60,"period":0.5,"phase":0.25},"start":1})");
    EXPECT_EQ(music, (EditPlanner::MusicInfo{"a.m4a", {120, 0.5, 0.25, 60}, 1, 9}));
    EXPECT_THROW(EditPlanner::decodeMusicInfo(R"({"file":"a.m4a","start":1,"end":9})"), Error);
}

} // namespace

} // namespace zento::test
