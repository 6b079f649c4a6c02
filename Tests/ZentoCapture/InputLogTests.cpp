#include "FakeDesktop.h"
#include "ZentoCapture/EventLogger.h"
#include "ZentoCapture/InputLog.h"
#include "ZentoCapture/KeyLabel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace zento {
namespace {

TEST(InputLogTest, everyInputIsLoggedInCaptureSpace)
{
    // A window recorded at 1000 points that is now 500 wide, on a display of two pixels a point.
    const CaptureSpace space{.originPoints = {100, 50}, .scale = 2, .windowScale = 2};
    const Vec2 point{110, 80};
    const Vec2 pos{40, 120};
    struct Case {
        const char* name;
        RawInput input;
        InputEvent expected;
    };
    const Case cases[] = {
        {"left down",
         {.type = RawInputType::LeftDown, .time = 3, .point = point},
         {.t = 3, .kind = EventKind::Click, .pos = pos, .button = 0}},
        {"right down",
         {.type = RawInputType::RightDown, .time = 3, .point = point},
         {.t = 3, .kind = EventKind::Click, .pos = pos, .button = 1}},
        {"left up",
         {.type = RawInputType::LeftUp, .time = 3, .point = point},
         {.t = 3, .kind = EventKind::MouseUp, .pos = pos, .button = 0}},
        {"key",
         {.type = RawInputType::KeyDown,
          .time = 3,
          .point = point,
          .keyCode = 8,
          .flags = KeyFlag::kCommand},
         {.t = 3, .kind = EventKind::KeyDown, .pos = pos, .key = "⌘C"}},
        {"scroll keeps out of the window's scale",
         {.type = RawInputType::Scroll, .time = 3, .point = point, .scroll = {-10, 20}},
         {.t = 3, .kind = EventKind::Scroll, .pos = pos, .scroll = Vec2{-20, 40}}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(inputEvent(row.input, space), row.expected);
    }
}

TEST(InputLogTest, anElementNeedsAnAreaAndGetsARole)
{
    const CaptureSpace space{.originPoints = {10, 20}, .scale = 2, .windowScale = 0.5};
    EXPECT_FALSE(axInfo({.role = "AXButton", .frame = {0, 0, 5, 0}}, space));
    EXPECT_FALSE(axInfo({.role = "AXButton", .frame = {0, 0, 0, 5}}, space));
    EXPECT_EQ(
        axInfo({.frame = {12, 24, 30, 40}}, space),
        (AXInfo{.role = "AXUnknown", .frame = {2, 4, 30, 40}}));
}

TEST(InputLogTest, anEmptyLogFinishesEmpty)
{
    EXPECT_TRUE(EventLog().finished(12).empty());
}

TEST(InputLogTest, writersOnSeveralThreadsLoseNothing)
{
    FakeDesktop desktop;
    const auto log = InputLog::make(desktop.elementLookup());
    constexpr int kCount = 2000;
    std::jthread moves([&] {
        for (int i = 0; i < kCount; ++i) {
            log->move(i, {});
        }
    });
    std::jthread clicks([&] {
        for (int i = 0; i < kCount; ++i) {
            log->handle({.type = RawInputType::LeftDown, .time = 1.0 * i});
            desktop.lookups.back().second({.frame = {1.0 * i, 0, 1, 1}});
        }
    });
    moves.join();
    clicks.join();
    const auto events = log->finished(0);
    EXPECT_EQ(events.size(), 2U * kCount);
    EXPECT_TRUE(std::ranges::is_sorted(events, {}, &InputEvent::t));
    for (const InputEvent& event : events) {
        EXPECT_EQ(event.ax.has_value(), event.kind == EventKind::Click);
        EXPECT_TRUE(!event.ax || event.ax->frame.x == 2 * event.t); // the click's own element
    }
}

TEST(EventLoggerTest, logsPlainlyAndTellsAtOnce)
{
    FakeDesktop desktop;
    desktop.displayList[0].scale = 2;
    desktop.displayList[0].bounds = {300, 300, 10, 10};
    EventLogger logger(desktop);
    std::atomic<int> told = 0;
    logger.onEvent = [&](const InputEvent&) { ++told; };
    ASSERT_TRUE(logger.start());
    desktop.input({.type = RawInputType::KeyDown, .time = 5, .point = {10, 20}, .keyCode = 200});
    desktop.input({.type = RawInputType::Scroll, .time = 5, .scroll = {3, 4}});
    logger.stop();
    auto events = logger.events();
    EXPECT_EQ(static_cast<std::size_t>(told), events.size());
    std::erase_if(events, [](const InputEvent& event) { return event.kind == EventKind::Move; });
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].key, "kc:200");
    EXPECT_EQ(events[0].pos, (Vec2{20, 40}));
    EXPECT_LE(events[0].t, events[1].t);
    EXPECT_EQ(events[1].scroll, (Vec2{3, 4}));

    desktop.inputFailure = Error(ErrorCode::kNoInput, "no");
    EXPECT_FALSE(EventLogger(desktop).start());
}

TEST(CaptureSpaceTest, aWindowsPointsStayOnItsPictureHoweverItIsResized)
{
    struct Case {
        const char* name;
        Rect frame;
        double windowScale;
        double shown;
    };
    constexpr Vec2 kRecorded{1000, 800};
    const CaptureSpace start{.originPoints = {7, 8}, .scale = 2};
    const Case cases[] = {
        {"moved", {-30, 40, 1000, 800}, 1, 1},
        {"half", {5, 6, 500, 400}, 2, 2},
        {"lower", {5, 6, 1000, 200}, 1, 1},
        {"wider", {5, 6, 2000, 800}, 0.5, 0.5},
        {"narrower: as high as before", {5, 6, 500, 800}, 2, 1},
        {"taller", {5, 6, 1000, 1600}, 1, 0.5},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const CaptureSpace space = following(start, row.frame, kRecorded);
        EXPECT_EQ(space.windowScale, row.windowScale);
        EXPECT_LE(space.fitScale, 1);
        EXPECT_EQ(space.map(Vec2{row.frame.x, row.frame.y}), (Vec2{0, 0}));
        const Vec2 end = space.map(Vec2{row.frame.x + row.frame.w, row.frame.y + row.frame.h});
        EXPECT_DOUBLE_EQ(end.x, row.frame.w * row.shown * 2);
        EXPECT_DOUBLE_EQ(end.y, row.frame.h * row.shown * 2);
        // The whole window lies in the frame and touches one of its far edges.
        EXPECT_LE(end.x, 2000);
        EXPECT_LE(end.y, 1600);
        EXPECT_TRUE(end.x == 2000 || end.y == 1600);
        const Rect mapped = space.map(row.frame);
        EXPECT_DOUBLE_EQ(mapped.w, end.x);
        EXPECT_DOUBLE_EQ(mapped.h, end.y);
    }
    for (const Rect& nothing : {Rect{5, 6, 1, 800}, Rect{5, 6, 500, 0}}) {
        EXPECT_EQ(following(start, nothing, kRecorded), start);
    }
}

} // namespace
} // namespace zento
