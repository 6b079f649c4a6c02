#include "Log.h"
#include "TestSupport/RandomSession.h"
#include "ZentoEngine/MusicPlanning.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <thread>

namespace zento::test {

namespace {

using namespace EditPlanner;

constexpr std::uint64_t kSessions = 150;

template <typename Check>
void forEachSession(Check check)
{
    for (std::uint64_t seed = 1000; seed < 1000 + kSessions; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const RandomSession session(seed);
        check(session.input, plan(session.input));
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

TEST(Plan, KeepsDisjointStretchesInsideTheRecording)
{
    forEachSession([](const PlanInput& input, const EditPlan& plan) {
        double end = 0;
        for (const SpeedSegment& segment : plan.timeRemap) {
            EXPECT_GE(segment.sourceStart, end);
            EXPECT_GT(segment.sourceEnd, segment.sourceStart);
            EXPECT_GT(segment.speed, 0);
            end = segment.sourceEnd;
            for (const Overrides::SourceRange& removed : input.overrides.removedRanges) {
                const bool isApart = removed.end <= segment.sourceStart
                                     || segment.sourceEnd <= removed.start
                                     || removed.start >= removed.end;
                EXPECT_TRUE(isApart) << "removed time came back";
            }
        }
        EXPECT_LE(end, input.meta.duration);
    });
}

TEST(Plan, SparesSpeech)
{
    forEachSession([](const PlanInput& input, const EditPlan& plan) {
        for (const TranscriptSegment& said : input.transcript) {
            for (const SpeedSegment& segment : plan.timeRemap) {
                // A segment that ends before it starts says nothing about any time.
                const bool overlaps = said.start <= said.end && said.start < segment.sourceEnd
                                      && segment.sourceStart < said.end;
                EXPECT_TRUE(!overlaps || segment.speed == 1) << "speech is sped up";
            }
        }
    });
}

TEST(Plan, IsOrderedAndInsideTheFilm)
{
    forEachSession([](const PlanInput& input, const EditPlan& plan) {
        const double duration = RemapCurve(plan.timeRemap).outputDuration();
        EXPECT_TRUE(std::ranges::is_sorted(plan.camera, {}, &CameraKeyframe::tOut));
        EXPECT_TRUE(std::ranges::is_sorted(plan.cursor, {}, &CursorSample::t));
        EXPECT_TRUE(std::ranges::is_sorted(plan.sfx, {}, &SFXCue::tOut));
        EXPECT_EQ(plan.keystrokes.has_value(), input.config.showKeystrokes);
        EXPECT_EQ(plan.music.has_value(), input.music.has_value());
        EXPECT_TRUE(!plan.captions || !plan.captions->empty());
        EXPECT_TRUE(!plan.chapters || !plan.chapters->empty());
        for (const CameraKeyframe& keyframe : plan.camera) {
            EXPECT_LE(keyframe.tOut, duration);
            EXPECT_TRUE(keyframe.center.x >= 0 && keyframe.center.x <= input.meta.pixelWidth);
        }
        if (plan.music && !plan.music->duckPoints.empty()) {
            EXPECT_TRUE(std::ranges::is_sorted(plan.music->duckPoints, {}, &DuckPoint::tOut));
            EXPECT_EQ(plan.music->duckPoints.size() % 2, 0U);
        }
    });
}

TEST(Plan, IsTheSameOnEveryThread)
{
    const RandomSession session(7);
    const EditPlan expected = plan(session.input);
    std::vector<EditPlan> plans(4);
    {
        std::vector<std::jthread> threads;
        threads.reserve(plans.size());
        for (EditPlan& result : plans) {
            threads.emplace_back([&] { result = plan(session.input); });
        }
    }
    EXPECT_THAT(plans, testing::Each(expected));
}

TEST(Plan, DoesNotDependOnTheOrderOfMoves)
{
    for (std::uint64_t seed = 0; seed < 30; ++seed) {
        RandomSession session(seed);
        auto& overrides = session.input.overrides;
        overrides.addedZooms.clear(); // these ask for the first move in recording order
        std::vector<InputEvent> events = session.events;
        std::vector<std::size_t> places;
        double last = -1;
        for (std::size_t i = 0; i < events.size(); ++i) { // moves of one time keep their order
            if (events[i].kind == EventKind::Move && events[i].t > last) {
                places.push_back(i);
                last = events[i].t;
            } else if (events[i].kind == EventKind::Move) {
                events[i].kind = EventKind::DragEnd;
            }
        }
        session.input.events = events;
        const EditPlan expected = plan(session.input);
        std::vector<InputEvent> shuffled = events;
        std::mt19937 order(static_cast<unsigned>(seed));
        for (std::size_t i = places.size(); i > 1; --i) {
            std::swap(shuffled[places[i - 1]], shuffled[places[order() % i]]);
        }
        session.input.events = shuffled;
        EXPECT_EQ(plan(session.input), expected) << seed;
    }
}

TEST(Plan, ZoomEditsDoNotTouchTheTime)
{
    forEachSession([](const PlanInput& input, const EditPlan& edited) {
        PlanInput plain = input;
        plain.overrides = {};
        plain.overrides.removedRanges = input.overrides.removedRanges;
        const EditPlan unedited = plan(plain);
        EXPECT_EQ(edited.timeRemap, unedited.timeRemap);
        EXPECT_EQ(edited.cursor, unedited.cursor);
        EXPECT_EQ(edited.captions, unedited.captions);
    });
}

TEST(Plan, OfAnEmptyLogShowsEverything)
{
    PlanInput input;
    input.meta = meta(12);
    input.narration = NarrationPlan{"narration.wav", 0.5, 2};
    const EditPlan result = plan(input);
    EXPECT_EQ(result.timeRemap, (std::vector<SpeedSegment>{{0, 12, 1}}));
    EXPECT_EQ(result.camera, (std::vector<CameraKeyframe>{{0, {500, 500}, 1}}));
    EXPECT_TRUE(result.cursor.empty() && result.clicks.empty() && result.sfx.empty());
    EXPECT_EQ(result.focusMoments, std::vector<FocusMoment>());
    EXPECT_EQ(result.narration, input.narration);
    EXPECT_FALSE(result.captions || result.chapters || result.music || result.keystrokes);
}

TEST(Plan, LeavesClicksInCutTimeOut)
{
    const std::vector<InputEvent> events = {click(10), click(11), click(12)};
    PlanInput input;
    input.events = events;
    input.meta = meta();
    input.overrides.removedRanges = {{10.5, 11.5}};
    const EditPlan result = plan(input);
    ASSERT_EQ(result.clicks.size(), 2U);
    EXPECT_EQ(result.clicks[1].t, 12) << "markers stay in source time";
    EXPECT_EQ(std::ranges::count(result.sfx, "click", &SFXCue::kind), 2);
}

TEST(Plan, SnapsToTheMusicOnlyWithoutSpeech)
{
    const std::vector<InputEvent> events = {click(10)};
    PlanInput input;
    input.events = events;
    input.meta = meta();
    input.music = MusicInfo{"music.m4a", {120, 0.5, 0, 100}, 0, 60};
    const EditPlan silent = plan(input);
    EXPECT_NE(silent.timeRemap.front().speed, 1);
    EXPECT_EQ(silent.music->gainDb, -11);
    input.transcript = {{10, 10.5, ""}};
    const EditPlan spoken = plan(input);
    EXPECT_EQ(spoken.timeRemap.front().speed, 1);
    EXPECT_EQ(spoken.music->gainDb, -16);
    EXPECT_EQ(spoken.captions, std::nullopt);
}

MusicInfo trimmedMusic(double start, double end, double phase = 0.25, double period = 0.5)
{
    return {"music.m4a", {60 / period, period, phase, 100}, start, end};
}

TEST(Music, StartsOnTheBeatNearestToTheTrim)
{
    const auto offset = [](const MusicInfo& music) {
        return planMusic(music, {}, {}, wholeFilm()).sourceOffset;
    };
    EXPECT_EQ(offset(trimmedMusic(0.1, 50)), 0.25);
    EXPECT_EQ(offset(trimmedMusic(3.4, 50)), 3.25);
    EXPECT_EQ(offset(trimmedMusic(3.6, 50)), 3.75);
    EXPECT_EQ(offset(trimmedMusic(3.5, 50)), 3.75) << "halfway goes up";
    EXPECT_EQ(offset(trimmedMusic(3.6, 50, 0.1, 0.2)), 0.1) << "no beat in so short a period";
}

TEST(Music, PlaysTheTrimAndFades)
{
    const MusicPlan whole = planMusic(trimmedMusic(3.4, 50), {}, {}, wholeFilm(10));
    EXPECT_EQ(whole.playDuration, 50 - 3.25);
    EXPECT_DOUBLE_EQ(whole.fadeOut, 1.2);
    EXPECT_EQ(planMusic(trimmedMusic(3.5, 5.5), {}, {}, wholeFilm()).playDuration, std::nullopt);
    EXPECT_EQ(planMusic(trimmedMusic(3.5, 5.6), {}, {}, wholeFilm()).fadeOut, 1.8);
}

TEST(Music, DucksDeeperUnderSpeech)
{
    // Fast from 20 to 40, speech from -0.25 to 5 and from 30 to 35; at 1.9 nothing is ducked.
    const std::vector<SpeedSegment> segments = {{0, 20, 1}, {20, 40, 2}, {50, 60, 1.9}};
    const std::vector<TimeRange> speech = {{-0.25, 5}, {30, 35}, {42, 47}};
    const RemapCurve remap(segments);
    const auto points = planMusic(trimmedMusic(0, 9), segments, speech, remap).duckPoints;
    const std::vector<DuckPoint> expected = {
        {0, -9},
        {5, 0},
        {remap.outputTime(20), -6},
        {remap.outputTime(30), -9},
        {remap.outputTime(35), -6},
        {remap.outputTime(40), 0}};
    EXPECT_THAT(
        points,
        testing::Pointwise(
            testing::Truly([](const auto& pair) {
                const auto& [actual, wanted] = pair;
                return actual.gainDb == wanted.gainDb && std::abs(actual.tOut - wanted.tOut) < 1e-9;
            }),
            expected));
}

} // namespace

} // namespace zento::test
