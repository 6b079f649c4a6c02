#include "Log.h"
#include "ZentoCore/Error.h"
#include "ZentoEngine/BeatSnapping.h"
#include "ZentoEngine/RemovedRanges.h"
#include "ZentoEngine/TimeRemapConstruction.h"

#include <gmock/gmock.h>

#include <cmath>

namespace zento::test {

namespace {

using namespace EditPlanner;
using Kind = Moment::Kind;

struct RemapCase {
    const char* name;
    std::vector<Moment> moments;
    std::vector<TimeRange> speech;
    std::vector<SpeedSegment> expected; // of a recording of 100 s
};

class Remap : public testing::TestWithParam<RemapCase> {};

TEST_P(Remap, KeepsAndSpeedsUp)
{
    const auto segments = buildTimeRemap(GetParam().moments, 100, {}, GetParam().speech);
    const auto& expected = GetParam().expected;
    ASSERT_EQ(segments.size(), expected.size());
    for (std::size_t i = 0; i < segments.size(); ++i) {
        EXPECT_NEAR(segments[i].sourceStart, expected[i].sourceStart, 1e-9) << i;
        EXPECT_NEAR(segments[i].sourceEnd, expected[i].sourceEnd, 1e-9) << i;
        EXPECT_EQ(segments[i].speed, expected[i].speed) << i;
    }
}

Moment at(double start, double end)
{
    return moment(Kind::Click, start, end);
}

Moment typing(double start, double end)
{
    return moment(Kind::Typing, start, end);
}

Moment scrolling(double start, double end)
{
    return moment(Kind::Scroll, start, end);
}

// The gap that is cut must exceed 1.6 + 0.45 + 0.6 = 2.65 s.
INSTANTIATE_TEST_SUITE_P(
    TimeRemap,
    Remap,
    testing::Values(
        RemapCase{"NoMoments", {}, {}, {{0, 100, 1}}},
        RemapCase{"OneClick", {at(10, 10.5)}, {}, {{9.1, 11.8, 1}}},
        RemapCase{"AtTheEdges", {at(0.5, 0.6), at(1, 99.5)}, {}, {{0, 100, 1}}},
        RemapCase{"GapTooSmall", {at(10, 11), at(13.5, 14)}, {}, {{9.1, 15.3, 1}}},
        RemapCase{"GapCut", {at(10, 11), at(20, 21)}, {}, {{9.1, 11.6, 1}, {19.55, 22.3, 1}}},
        RemapCase{
            "SpeechInTheGap",
            {at(10, 11), at(20, 21)},
            {{12.1, 18}}, // leaves 0.5 s before, too little to cut
            {{9.1, 18, 1}, {19.55, 22.3, 1}}},
        RemapCase{
            "TypingIsFast",
            {typing(10, 12)},
            {},
            {{9.1, 10.15, 1}, {10.15, 11.9, 2.4}, {11.9, 13.3, 1}}},
        RemapCase{"TypingUnderSpeech", {typing(10, 12)}, {{9.5, 12.5}}, {{9.1, 13.3, 1}}},
        RemapCase{
            "TheFirstFastPieceWins",
            {scrolling(10, 12), typing(10.85, 14.1)}, // 11 to 14 without its ends
            {},
            {{9.1, 10, 1}, {10, 12, 1.6}, {12, 14, 2.4}, {14, 15.4, 1}}},
        RemapCase{"ScrollTooShort", {scrolling(10, 10.1875)}, {}, {{9.1, 11.4875, 1}}},
        RemapCase{"SpeechWidens", {at(50, 51)}, {{-0.25, 3}, {90, 94}}, {{0, 94.4, 1}}},
        RemapCase{"SpeechDoesNotNarrow", {at(50, 51)}, {{50.5, 50.8}}, {{49.1, 52.3, 1}}},
        RemapCase{"SpeechUpToTheEnd", {at(50, 51)}, {{50, 99.9}}, {{49.1, 100, 1}}}),
    [](const auto& each) { return each.param.name; });

TEST(TimeRemap, OfAnActionBehindTheEndIsAnError)
{
    EXPECT_THROW(buildTimeRemap({{at(101, 101.1)}}, 100, {}, {}), Error);
    EXPECT_TRUE(buildTimeRemap({{at(100.9, 101)}}, 100, {}, {}).empty());
}

TEST(SpeechRanges, MergeWhatTouches)
{
    const std::vector<TranscriptSegment> transcript = {
        {5, 6, ""}, {0, 1, "first"}, {1.5, 2, "touches with its margin"}, {0.5, 0.75, "inside"}};
    EXPECT_EQ(
        speechRanges(transcript, 0.25), (std::vector<TimeRange>{{-0.25, 2.25}, {4.75, 6.25}}));
}

TEST(RemovedRanges, LeaveNoSlivers)
{
    const std::vector<SpeedSegment> segments = {{0, 10, 1}, {10, 10.04, 2}, {20, 30, 2}};
    EXPECT_EQ(subtract(segments, {}), segments);
    using Ranges = std::vector<Overrides::SourceRange>;
    EXPECT_EQ(
        subtract(segments, Ranges{{50, 40}}), (std::vector<SpeedSegment>{{0, 10, 1}, {20, 30, 2}}));
    EXPECT_EQ(
        subtract(segments, Ranges{{4, 5}, {9.5, 29.96}}),
        (std::vector<SpeedSegment>{{0, 4, 1}, {5, 9.5, 1}}));
    EXPECT_TRUE(subtract(segments, Ranges{{-1, 31}}).empty());
}

struct BeatCase {
    const char* name;
    double length; // seconds of one segment at speed 1
    double period;
    double expectedSpeed;
};

class Beats : public testing::TestWithParam<BeatCase> {};

TEST_P(Beats, RetimeAStretch)
{
    const auto& [name, length, period, expectedSpeed] = GetParam();
    const auto segments = snapToBeats({{0, length, 1}}, period, kBeatTolerance);
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_NEAR(segments.front().speed, expectedSpeed, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(
    BeatSnapping,
    Beats,
    testing::Values(
        BeatCase{"ToTheBeatBefore", 3.1, 0.5, 3.1 / 3.0},
        BeatCase{"ToTheBeatBehind", 2.9, 0.5, 2.9 / 3.0},
        BeatCase{"NoBeatInReach", 3.3, 1, 1},
        BeatCase{"PeriodTooShort", 3.1, 0.2, 1},
        BeatCase{"NearestBeatIsTheStart", 0.2, 0.5, 1},
        BeatCase{"Fastest", 0.7, 0.5, 1.12},
        BeatCase{"Slowest", 0.4, 0.6, 0.9}),
    [](const auto& each) { return each.param.name; });

TEST(BeatSnapping, PutsEveryCutOnABeatThatIsInReach)
{
    const std::vector<SpeedSegment> segments = {
        {0, 3.1, 1}, {5, 8, 1}, {8, 9.1, 2}, {20, 27.07, 1}};
    const auto snapped = snapToBeats(segments, 0.5, kBeatTolerance);
    const RemapCurve remap(snapped);
    for (const double cut : {3.1, 9.1, 27.07}) {
        const double beats = remap.outputTime(cut) / 0.5;
        EXPECT_NEAR(beats, std::round(beats), 1e-2) << cut;
    }
    EXPECT_DOUBLE_EQ(snapped[2].speed, 2 * snapped[1].speed) << "one factor for a whole stretch";
}

} // namespace

} // namespace zento::test
