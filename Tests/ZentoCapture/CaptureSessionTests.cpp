#include "FakeDesktop.h"
#include "ZentoCapture/CaptureSession.h"
#include "ZentoCapture/KeyLabel.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/SessionBundle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace zento {
namespace {

using testing::ElementsAre;

class CaptureSessionTest : public testing::Test {
protected:
    CaptureSessionTest()
        : m_folder(
              std::filesystem::path(testing::TempDir())
              / testing::UnitTest::GetInstance()->current_test_info()->name())
    {
        std::filesystem::remove_all(m_folder);
    }
    ~CaptureSessionTest() override { std::filesystem::remove_all(m_folder); }

    std::filesystem::path bundleURL() const { return m_folder / "a" / "b.zento"; }

    CaptureSession makeSession() { return {bundleURL(), desktop, desktop.writerFactory()}; }

    /// The code of what a step throws; 0 if it throws nothing.
    template <typename Step>
    static int codeOf(Step step)
    {
        try {
            step();
        } catch (const Error& error) {
            return error.code();
        }
        return 0;
    }

    std::vector<InputEvent> eventsWithoutMoves() const
    {
        auto events = SessionBundle::load(bundleURL()).events;
        std::erase_if(
            events, [](const InputEvent& event) { return event.kind == EventKind::Move; });
        return events;
    }

    FakeDesktop desktop;

private:
    std::filesystem::path m_folder;
};

TEST_F(CaptureSessionTest, listensFirstAndStopsListeningFirst)
{
    CaptureSession session = makeSession();
    session.start();
    desktop.showFrame(monotonicSeconds());
    session.stop();
    EXPECT_THAT(
        desktop.steps,
        ElementsAre(
            "input on", "displays", "writer", "stream on", "input off", "stream off", "finish"));
}

TEST_F(CaptureSessionTest, timesCountFromTheFirstFrame)
{
    CaptureSession session = makeSession();
    session.start();
    const double epoch = monotonicSeconds();
    desktop.input({.type = RawInputType::LeftDown, .time = epoch - 0.001, .point = {1, 1}});
    desktop.showFrame(epoch - 9, FrameStatus::Incomplete);
    desktop.showFrame(epoch);
    desktop.input({.type = RawInputType::LeftUp, .time = epoch + 0.3, .point = {30, 3}});
    desktop.input({.type = RawInputType::LeftDown, .time = epoch, .point = {10, 1}});
    desktop.input({.type = RawInputType::RightDown, .time = epoch + 0.3, .point = {40, 4}});
    desktop.showFrame(epoch + 0.5);
    session.stop();

    EXPECT_THAT(desktop.appendedTimes, ElementsAre(0, 0.5));
    const auto events = eventsWithoutMoves();
    ASSERT_EQ(events.size(), 3U); // what came before the first frame is gone
    EXPECT_EQ(events[0].t, 0);
    EXPECT_EQ(events[0].kind, EventKind::Click);
    // Equal times keep the order of their arrival.
    EXPECT_EQ(events[1].kind, EventKind::MouseUp);
    EXPECT_EQ(events[2].button, 1);
    const SessionMeta meta = SessionBundle::load(bundleURL()).meta;
    EXPECT_DOUBLE_EQ(meta.duration, 0.5);
    EXPECT_EQ(meta.appName, "Editor");
    EXPECT_EQ(meta.nominalFPS, 60);
}

TEST_F(CaptureSessionTest, aRefusedFrameIsCountedAndStillMovesTheClock)
{
    CaptureSession session = makeSession();
    session.start();
    desktop.writerIsReady = false;
    EXPECT_EQ(desktop.showFrame(100), FrameVerdict::Refused);
    desktop.writerIsReady = true;
    EXPECT_EQ(desktop.showFrame(101), FrameVerdict::Taken);
    desktop.writerIsReady = false;
    desktop.showFrame(103);
    EXPECT_EQ(session.frameCount(), 1);
    EXPECT_EQ(session.droppedFrameCount(), 2);
    session.stop();
    EXPECT_THAT(desktop.appendedTimes, ElementsAre(1)); // 100 is the epoch
    EXPECT_DOUBLE_EQ(SessionBundle::load(bundleURL()).meta.duration, 3);
}

TEST_F(CaptureSessionTest, thePointerIsLoggedAllTheTimeAlsoWhenItCannotBeRead)
{
    desktop.pointer.reset();
    CaptureSession session = makeSession();
    session.target = Target::Screen{7};
    desktop.displayList[0].bounds = {100, 50, 640, 480};
    session.start();
    const double epoch = monotonicSeconds();
    desktop.showFrame(epoch);
    const int before = desktop.pointerReads;
    while (desktop.pointerReads < before + 3) {
        std::this_thread::yield();
    }
    session.stop();
    const auto events = SessionBundle::load(bundleURL()).events;
    ASSERT_GE(events.size(), 2U); // the pointer stands still and is logged again and again
    for (const InputEvent& event : events) {
        EXPECT_EQ(event.kind, EventKind::Move);
        EXPECT_EQ(event.pos, (Vec2{-100, -50}));
    }
}

TEST_F(CaptureSessionTest, aLookupFindsItsClickUntilTheRecordingStops)
{
    const Element button{.role = "AXButton", .title = "Save", .frame = {12, 24, 20, 10}};
    {
        CaptureSession session = makeSession();
        session.start();
        desktop.showFrame(100);
        for (const double x : {11.0, 12.0, 13.0}) {
            desktop.input({.type = RawInputType::LeftDown, .time = 100 + x, .point = {x, 5}});
        }
        desktop.input({.type = RawInputType::KeyDown, .time = 120, .keyCode = 8});
        ASSERT_EQ(desktop.lookups.size(), 3U);
        EXPECT_EQ(desktop.lookups[1].first, (Vec2{12, 5}));
        desktop.lookups[1].second(button);
        desktop.lookups[0].second({.role = "AXButton", .frame = {0, 0, 20, 0}});
        session.stop();
        desktop.lookups[2].second(button); // too late
    }
    desktop.lookups[2].second(button); // nobody is left to tell

    const auto events = eventsWithoutMoves();
    ASSERT_EQ(events.size(), 4U);
    EXPECT_FALSE(events[0].ax); // an element without height
    EXPECT_EQ(
        events[1].ax, (AXInfo{.role = "AXButton", .frame = {12, 24, 20, 10}, .title = "Save"}));
    EXPECT_FALSE(events[2].ax);
    EXPECT_FALSE(events[3].ax);
}

TEST_F(CaptureSessionTest, failuresLeaveNothingRunning)
{
    struct Case {
        const char* name;
        int code;
        std::function<void(FakeDesktop&)> breakDesktop;
        std::vector<std::string> steps;
    };
    const Case cases[] = {
        {"no input",
         ErrorCode::kNoInput,
         [](FakeDesktop& broken) { broken.inputFailure = Error(ErrorCode::kNoInput, "no"); },
         {}},
        {"no display",
         ErrorCode::kNoDisplay,
         [](FakeDesktop& broken) { broken.displayList.clear(); },
         {"input on", "displays", "input off"}},
        {"no writer",
         5,
         [](FakeDesktop& broken) { broken.writerFailure = Error(5, "no"); },
         {"input on", "displays"}},
        {"no stream",
         6,
         [](FakeDesktop& broken) { broken.streamFailure = Error(6, "no"); },
         {"input on", "displays", "writer"}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        FakeDesktop broken;
        row.breakDesktop(broken);
        CaptureSession session(bundleURL(), broken, broken.writerFactory());
        EXPECT_EQ(codeOf([&] { session.start(); }), row.code);
        EXPECT_EQ(broken.steps, row.steps);
        EXPECT_EQ(codeOf([&] { session.stop(); }), ErrorCode::kNoFrames);
        EXPECT_EQ(codeOf([&] { session.stop(); }), ErrorCode::kNoFrames);
        EXPECT_FALSE(std::filesystem::exists(bundleURL() / "meta.json"));
    }
}

TEST_F(CaptureSessionTest, aWindowCannotBeRecordedYetAndSaysSo)
{
    CaptureSession session = makeSession();
    session.target = Target::Window{3};
    EXPECT_THROW(session.start(), Error);
    EXPECT_THAT(desktop.steps, ElementsAre("input on", "displays", "input off"));
}

TEST_F(CaptureSessionTest, noFramesAndAFullDiskWriteNoMetadata)
{
    CaptureSession session = makeSession();
    session.start();
    EXPECT_EQ(codeOf([&] { session.stop(); }), ErrorCode::kNoFrames);
    EXPECT_FALSE(std::filesystem::exists(bundleURL() / "meta.json"));

    desktop.finishFailure = Error("errno", ENOSPC, "could not write screen.mov: no space left");
    CaptureSession full = makeSession();
    full.start();
    desktop.showFrame(1);
    EXPECT_EQ(codeOf([&] { full.stop(); }), ENOSPC);
    EXPECT_FALSE(std::filesystem::exists(bundleURL() / "meta.json"));
}

TEST_F(CaptureSessionTest, theEndOfTheStreamIsPassedOnAndStopStillWorks)
{
    CaptureSession session = makeSession();
    std::vector<std::string> ends;
    session.onStreamStopped = [&](const std::optional<Error>& error) {
        ends.emplace_back(error ? error->what() : "user");
    };
    session.start();
    desktop.showFrame(1);
    desktop.streamEnd(Error(20, "gone"));
    desktop.streamEnd({});
    session.stop();
    EXPECT_THAT(ends, ElementsAre("gone", "user"));
    EXPECT_TRUE(std::filesystem::exists(bundleURL() / "meta.json"));
}

TEST_F(CaptureSessionTest, anOldMovieIsRemovedAndAnUnwritableFolderFails)
{
    std::filesystem::create_directories(bundleURL());
    std::ofstream(bundleURL() / "screen.mov") << "old";
    CaptureSession session = makeSession();
    session.start();
    EXPECT_FALSE(std::filesystem::exists(bundleURL() / "screen.mov"));

    const auto file = bundleURL() / "file";
    std::ofstream(file) << "no folder";
    CaptureSession inAFile(file / "x.zento", desktop, desktop.writerFactory());
    EXPECT_EQ(codeOf([&] { inAFile.start(); }), ENOTDIR);
}

TEST_F(CaptureSessionTest, everyTargetHasItsSizeAndOrigin)
{
    const DisplayInfo hiDpi{.id = 1, .bounds = {0, 0, 1440, 900}, .scale = 2};
    const DisplayInfo right{
        .id = 2, .bounds = {1440, 0, 641, 480.5}, .scale = 1, .role = DisplayRole::Main};
    struct Case {
        const char* name;
        CaptureTarget target;
        Vec2 pointer;
        std::uint32_t displayID;
        std::pair<int, int> size;
        std::optional<Rect> sourceRect;
        Vec2 mapped; // of the global point (1450, 10)
    };
    const Case cases[] = {
        {"screen", Target::Screen{1}, {}, 1, {2880, 1800}, {}, {2900, 20}},
        {"odd sizes go down", Target::Screen{2}, {}, 2, {640, 480}, {}, {10, 10}},
        {"an unknown screen is the first", Target::Screen{9}, {}, 1, {2880, 1800}, {}, {2900, 20}},
        {"under the pointer", Target::Display{}, {1440, 0}, 2, {640, 480}, {}, {10, 10}},
        {"pointer nowhere: main", Target::Display{}, {-5, 0}, 2, {640, 480}, {}, {10, 10}},
        {"area at 2",
         Target::Area{{10, 20, 301, 201}},
         {},
         1,
         {602, 402},
         Rect{10, 20, 301, 201},
         {2880, -20}},
        {"area at 1",
         Target::Area{{1450, 4, 301, 201}},
         {},
         2,
         {300, 200},
         Rect{10, 4, 301, 201},
         {0, 6}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        desktop.displayList = {hiDpi, right};
        desktop.pointer = row.pointer;
        CaptureSession session = makeSession();
        session.target = row.target;
        session.start();
        desktop.showFrame(1);
        desktop.input({.type = RawInputType::LeftUp, .time = 1, .point = {1450, 10}});
        session.stop();
        EXPECT_EQ(desktop.request->displayID, row.displayID);
        EXPECT_EQ(desktop.request->sourceRect, row.sourceRect);
        EXPECT_EQ(desktop.writerSize, row.size);
        EXPECT_EQ(eventsWithoutMoves().at(0).pos, row.mapped);
    }
}

} // namespace
} // namespace zento
