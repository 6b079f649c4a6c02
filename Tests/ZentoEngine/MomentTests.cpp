#include "Log.h"
#include "ZentoEngine/MomentDetection.h"
#include "ZentoEngine/ZoomEdits.h"

#include <gmock/gmock.h>

namespace zento::test {

namespace {

using namespace EditPlanner;
using Kind = Moment::Kind;

std::vector<Moment> detect(const std::vector<InputEvent>& events)
{
    return detectMoments(EventLog(events), meta(), {});
}

struct RunCase {
    const char* name;
    std::vector<InputEvent> events;
    std::vector<Moment> expected;
};

class Runs : public testing::TestWithParam<RunCase> {};

TEST_P(Runs, BecomeMoments)
{
    EXPECT_EQ(detect(GetParam().events), GetParam().expected);
}

const auto kScroll = EventKind::Scroll;

INSTANTIATE_TEST_SUITE_P(
    Moments,
    Runs,
    testing::Values(
        RunCase{"Nothing", {}, {}},
        RunCase{"ALoneKey", {key(1)}, {}},
        RunCase{"KeysAtTheGap", {key(0), key(0.55)}, {moment(Kind::Typing, 0, 0.55 + 0.2)}},
        RunCase{
            "ALastKeyAlone", {key(1), key(1.2), key(1.8)}, {moment(Kind::Typing, 1, 1.2 + 0.2)}},
        RunCase{"ALoneScrollTick", {event(2, kScroll)}, {moment(Kind::Scroll, 2, 2.1)}},
        RunCase{
            "ScrollsAcrossTheGap",
            {event(0, kScroll), event(0.4, kScroll), event(0.9, kScroll)},
            {moment(Kind::Scroll, 0, 0.5), moment(Kind::Scroll, 0.9, 1.0)}},
        RunCase{
            "EqualStartsInOrderOfKinds",
            {event(1, kScroll), key(1), key(1), click(1)},
            {moment(Kind::Click, 1, 1.12),
             moment(Kind::Typing, 1, 1.2),
             moment(Kind::Scroll, 1, 1.1)}},
        RunCase{
            "OtherKinds",
            {event(1, EventKind::Move), event(1, EventKind::MouseUp), event(1, EventKind::DragEnd)},
            {}}),
    [](const auto& each) { return each.param.name; });

struct TargetCase {
    const char* name;
    double clickTime; // the first key is at 10
    const char* role;
    bool isFound;
};

class Targets : public testing::TestWithParam<TargetCase> {};

TEST_P(Targets, FrameTheTyping)
{
    const auto& [name, clickTime, role, isFound] = GetParam();
    const Rect frame = {100, 100, 200, 40};
    const auto moments = detect({clickOn(clickTime, role, frame), key(10), key(10.1)});
    const auto typing = std::ranges::find(moments, Kind::Typing, &Moment::kind);
    ASSERT_NE(typing, moments.end());
    EXPECT_EQ(typing->focus, isFound ? std::optional(frame) : std::nullopt);
    EXPECT_EQ(typing->title.has_value(), isFound);
}

INSTANTIATE_TEST_SUITE_P(
    Moments,
    Targets,
    testing::Values(
        TargetCase{"JustBeforeTheKeys", 9.9, "AXTextField", true},
        TargetCase{"LongBefore", 0.1, "AXTextArea", true},
        TargetCase{"JustAfterTheFirstKey", 10.04, "AXTextField", true},
        TargetCase{"TooLate", 10.06, "AXTextField", false},
        TargetCase{"RoleThatContainsTheName", 9, "MyTextFieldView", true},
        TargetCase{"OtherElement", 9, "AXButton", false}),
    [](const auto& each) { return each.param.name; });

struct HintCase {
    const char* name;
    std::vector<FramingHint> hints;
    std::optional<Rect> expected; // for a click at 5 on a pane too large to frame
};

class Hints : public testing::TestWithParam<HintCase> {};

TEST_P(Hints, StandInForAnUnusableFrame)
{
    const std::vector<InputEvent> events = {clickOn(5, "AXGroup", {0, 0, 700, 200})};
    const auto moments = detectMoments(EventLog(events), meta(), GetParam().hints);
    ASSERT_EQ(moments.size(), 1U);
    EXPECT_EQ(moments.front().focus, GetParam().expected);
}

const Rect kA = {10, 10, 700, 100};
const Rect kB = {20, 20, 100, 100};
const Rect kTooWide = {0, 0, 801, 100};

INSTANTIATE_TEST_SUITE_P(
    Moments,
    Hints,
    testing::Values(
        HintCase{"None", {}, {}},
        HintCase{"TooFar", {{5.09, kA}}, {}},
        HintCase{"WiderThanAControlMayBe", {{5.05, kA}}, kA},
        HintCase{"TheNearest", {{5.05, kA}, {4.98, kB}}, kB},
        HintCase{"TheFirstOfEquallyNear", {{5.0625, kB}, {4.9375, kA}, {5.0625, kA}}, kB},
        // Only the nearest is asked; a usable one farther off does not step in.
        HintCase{"TheNearestUnusable", {{5.05, kA}, {5.01, kTooWide}}, {}}),
    [](const auto& each) { return each.param.name; });

TEST(Hints, MustFitTheFrame)
{
    const SessionMeta frame = meta();
    const auto isUsable = [&](Rect rect) { return sanitizedHint(rect, frame).has_value(); };
    EXPECT_TRUE(isUsable({0, 0, 24, 24}));
    EXPECT_FALSE(isUsable({0, 0, 23.9, 24}));
    EXPECT_FALSE(isUsable({0, 0, 24, 23.9}));
    EXPECT_TRUE(isUsable({0, 0, 800, 800}));
    EXPECT_FALSE(isUsable({0, 0, 100, 800.1}));
    EXPECT_TRUE(isUsable({-100, 950, 100, 100}));
    EXPECT_FALSE(isUsable({-100.1, 0, 100, 100}));
    EXPECT_FALSE(isUsable({950.1, 0, 100, 100}));
}

std::vector<Moment> threeClicks()
{
    return {
        moment(Kind::Click, 10, 10.12),
        moment(Kind::Click, 20, 20.12),
        moment(Kind::Scroll, 30, 31)};
}

TEST(ZoomEdits, MoveAMomentPastItsNeighbourAndKeepItsKey)
{
    Overrides overrides;
    overrides.zoomEdits = {{10.35, 25, 2, 1.7}, {20.36, 1, {}, {}}};
    const auto moments = applyZoomEdits(threeClicks(), overrides, EventLog({}));
    ASSERT_EQ(moments.size(), 3U);
    EXPECT_EQ(moments[0].start, 20) << "an edit out of reach is ignored";
    EXPECT_EQ(moments[0].editKey, std::nullopt);
    EXPECT_EQ(moments[1].start, 25);
    EXPECT_NEAR(moments[1].end - moments[1].start, 0.12, 1e-12);
    EXPECT_EQ(moments[1].editKey, 10);
    EXPECT_EQ(moments[1].forcedZoom, 1.7);
    EXPECT_EQ(moments[1].hold, 2);
}

TEST(ZoomEdits, DeleteByTheOldTimeButNeverAScroll)
{
    Overrides overrides;
    overrides.zoomEdits = {{10, 15, {}, {}}};
    overrides.deletedZoomSourceTimes = {15, 30};
    EXPECT_EQ(applyZoomEdits(threeClicks(), overrides, EventLog({})).size(), 3U);
    overrides.deletedZoomSourceTimes = {10, 30};
    EXPECT_EQ(applyZoomEdits(threeClicks(), overrides, EventLog({})).size(), 2U);
}

TEST(ZoomEdits, AddedZoomsStandWhereThePointerWas)
{
    const std::vector<InputEvent> log = {
        event(1, EventKind::Move, {1, 1}), event(3, EventKind::Move, {3, 3})};
    Overrides overrides;
    overrides.deletedZoomSourceTimes = {1.1};
    overrides.addedZooms = {{1.1, 1.1, 2, 1.5}, {9, 9, 2, 1.5}};
    const auto moments = applyZoomEdits({}, overrides, EventLog(log));
    ASSERT_EQ(moments.size(), 2U) << "a zoom made by hand is not deleted with the found ones";
    EXPECT_EQ(moments[0].pos, (Vec2{3, 3})) << "the next move wins over a nearer one before";
    EXPECT_EQ(moments[1].pos, (Vec2{3, 3})) << "behind the last move its place stays";
    EXPECT_EQ(applyZoomEdits({}, overrides, EventLog({}))[0].pos, (Vec2{0, 0}));
}

} // namespace

} // namespace zento::test
