#include "FakeDesktop.h"
#include "FakeSideRecorders.h"
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

    CaptureSession makeSession()
    {
        return {bundleURL(), m_desktop, m_desktop.writerFactory(), m_side.factories()};
    }

    /// One that records everything.
    void recordAll(CaptureSession& session)
    {
        session.recordNarration = true;
        session.microphoneID = "desk";
        session.recordWebcam = true;
        session.recordSystemAudio = true;
    }

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

    FakeDesktop m_desktop;
    FakeSideRecorders m_side{m_desktop.steps};

private:
    std::filesystem::path m_folder;
};

TEST_F(CaptureSessionTest, listensFirstAndStopsListeningFirst)
{
    CaptureSession session = makeSession();
    session.start();
    m_desktop.showFrame(monotonicSeconds());
    session.stop();
    EXPECT_THAT(
        m_desktop.steps,
        ElementsAre(
            "input on", "displays", "writer", "stream on", "input off", "stream off", "finish"));
}

TEST_F(CaptureSessionTest, sideRecordersStartAndStopInTheirOrderAndGetOffsets)
{
    const double epoch = monotonicSeconds();
    m_side.microphone.start = epoch + 0.25;
    m_side.camera.start = epoch + 0.5;
    m_side.systemAudio.start = epoch - 0.125;
    CaptureSession session = makeSession();
    recordAll(session);
    session.start();
    m_desktop.showFrame(epoch);
    session.stop();
    EXPECT_THAT(
        m_desktop.steps,
        ElementsAre(
            "input on",
            "displays",
            "writer",
            "system.wav on",
            "stream on",
            "narration.wav on",
            "webcam.mov on",
            "input off",
            "stream off",
            "finish",
            "narration.wav off",
            "webcam.mov off",
            "system.wav off"));
    EXPECT_EQ(m_side.microphone.deviceID, "desk");
    EXPECT_EQ(m_side.camera.deviceID, std::nullopt);
    const SessionBundle bundle = SessionBundle::load(bundleURL());
    EXPECT_NEAR(bundle.meta.narrationOffset.value(), 0.25, 1e-6);
    EXPECT_NEAR(bundle.meta.webcamOffset.value(), 0.5, 1e-6);
    EXPECT_NEAR(bundle.meta.systemAudioOffset.value(), -0.125, 1e-6);
    EXPECT_TRUE(std::filesystem::exists(bundle.narrationURL()));
}

TEST_F(CaptureSessionTest, aSideRecorderThatFailsLeavesTheRecordingWithoutItsFile)
{
    m_side.microphone.failure = Error(ErrorCode::kNoMicrophone, "no microphone input");
    m_side.camera.failure = Error(ErrorCode::kNoCamera, "no camera");
    testing::internal::CaptureStderr();
    CaptureSession session = makeSession();
    recordAll(session);
    session.start();
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "warning: microphone unavailable: no microphone input\n"
        "warning: camera unavailable: no camera\n");
    m_desktop.showFrame(monotonicSeconds());
    session.stop(); // the system audio, which started, gives no usable file
    const SessionBundle bundle = SessionBundle::load(bundleURL());
    for (const auto& offset :
         {bundle.meta.narrationOffset, bundle.meta.webcamOffset, bundle.meta.systemAudioOffset}) {
        EXPECT_EQ(offset, std::nullopt);
    }
    for (const auto& file : {bundle.narrationURL(), bundle.webcamURL(), bundle.systemAudioURL()}) {
        EXPECT_FALSE(std::filesystem::exists(file)) << file;
    }
}

TEST_F(CaptureSessionTest, timesCountFromTheFirstFrame)
{
    CaptureSession session = makeSession();
    session.start();
    const double epoch = monotonicSeconds();
    m_desktop.input({.type = RawInputType::LeftDown, .time = epoch - 0.001, .point = {1, 1}});
    m_desktop.showFrame(epoch - 9, FrameStatus::Incomplete);
    m_desktop.showFrame(epoch);
    m_desktop.input({.type = RawInputType::LeftUp, .time = epoch + 0.3, .point = {30, 3}});
    m_desktop.input({.type = RawInputType::LeftDown, .time = epoch, .point = {10, 1}});
    m_desktop.input({.type = RawInputType::RightDown, .time = epoch + 0.3, .point = {40, 4}});
    m_desktop.showFrame(epoch + 0.5);
    session.stop();

    EXPECT_THAT(m_desktop.appendedTimes, ElementsAre(0, 0.5));
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
    m_desktop.writerIsReady = false;
    EXPECT_EQ(m_desktop.showFrame(100), FrameVerdict::Refused);
    m_desktop.writerIsReady = true;
    EXPECT_EQ(m_desktop.showFrame(101), FrameVerdict::Taken);
    m_desktop.writerIsReady = false;
    m_desktop.showFrame(103);
    EXPECT_EQ(session.frameCount(), 1);
    EXPECT_EQ(session.droppedFrameCount(), 2);
    session.stop();
    EXPECT_THAT(m_desktop.appendedTimes, ElementsAre(1)); // 100 is the epoch
    EXPECT_DOUBLE_EQ(SessionBundle::load(bundleURL()).meta.duration, 3);
}

TEST_F(CaptureSessionTest, thePointerIsLoggedAllTheTimeAlsoWhenItCannotBeRead)
{
    m_desktop.pointer.reset();
    CaptureSession session = makeSession();
    session.target = Target::Screen{7};
    m_desktop.displayList[0].bounds = {100, 50, 640, 480};
    session.start();
    const double epoch = monotonicSeconds();
    m_desktop.showFrame(epoch);
    const int before = m_desktop.pointerReads;
    while (m_desktop.pointerReads < before + 3) {
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
        m_desktop.showFrame(100);
        for (const double x : {11.0, 12.0, 13.0}) {
            m_desktop.input({.type = RawInputType::LeftDown, .time = 100 + x, .point = {x, 5}});
        }
        m_desktop.input({.type = RawInputType::KeyDown, .time = 120, .keyCode = 8});
        ASSERT_EQ(m_desktop.lookups.size(), 3U);
        EXPECT_EQ(m_desktop.lookups[1].first, (Vec2{12, 5}));
        m_desktop.lookups[1].second(button);
        m_desktop.lookups[0].second({.role = "AXButton", .frame = {0, 0, 20, 0}});
        session.stop();
        m_desktop.lookups[2].second(button); // too late
    }
    m_desktop.lookups[2].second(button); // nobody is left to tell

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
        {"a window of no size",
         ErrorCode::kMovieNotStarted,
         [](FakeDesktop& broken) { broken.displayList[0].bounds.h = 1.9; },
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

TEST_F(CaptureSessionTest, aWindowThatIsGoneLeavesNoListening)
{
    CaptureSession session = makeSession();
    session.target = Target::Window{3};
    m_desktop.displayList.clear(); // even so it is the window that is named
    try {
        session.start();
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kWindowGone);
        EXPECT_STREQ(error.what(), "window no longer exists");
    }
    EXPECT_THAT(m_desktop.steps, ElementsAre("input on", "input off"));
    EXPECT_FALSE(std::filesystem::exists(bundleURL()));
}

TEST_F(CaptureSessionTest, theLogFollowsAWindow)
{
    m_desktop.displayList.push_back({.id = 8, .bounds = {640, 0, 640, 480}, .scale = 2});
    m_desktop.windows[3] = {.frame = {700, 100, 101, 50.5}, .application = "Player"};
    CaptureSession session = makeSession();
    session.target = Target::Window{3};
    session.excludeWindowIDs = {9};
    session.start();
    EXPECT_EQ(m_desktop.request->displayID, 8U);
    EXPECT_EQ(m_desktop.request->window, (RequestedWindow{.id = 3, .size = {101, 50.5}}));
    EXPECT_TRUE(m_desktop.request->excludedWindowIDs.empty());
    EXPECT_EQ(m_desktop.writerSize, std::pair(202, 100));
    m_desktop.showFrame(1);

    const auto click = [&](double x, double y) {
        m_desktop.input({.type = RawInputType::LeftUp, .time = 1, .point = {x, y}});
    };
    const auto waitForPoll = [&] {
        const int before = m_desktop.windowReads;
        while (m_desktop.windowReads < before + 2) { // the first answer has been used
            std::this_thread::yield();
        }
    };
    click(710, 120);
    m_desktop.moveWindow(Rect{0, 10, 50.5, 25.25});
    waitForPoll();
    click(10, 20);
    m_desktop.moveWindow({}); // minimised
    waitForPoll();
    click(10, 20);
    session.stop();
    const auto events = eventsWithoutMoves();
    EXPECT_EQ(events.at(0).pos, (Vec2{20, 40}));
    EXPECT_EQ(events.at(1).pos, (Vec2{40, 40}));
    EXPECT_EQ(events.at(2).pos, (Vec2{40, 40}));
    EXPECT_EQ(SessionBundle::load(bundleURL()).meta.appName, "Player");
}

TEST_F(CaptureSessionTest, noFramesAndAFullDiskWriteNoMetadata)
{
    CaptureSession session = makeSession();
    session.start();
    EXPECT_EQ(codeOf([&] { session.stop(); }), ErrorCode::kNoFrames);
    EXPECT_FALSE(std::filesystem::exists(bundleURL() / "meta.json"));

    m_desktop.finishFailure = Error("errno", ENOSPC, "could not write screen.mov: no space left");
    CaptureSession full = makeSession();
    full.start();
    m_desktop.showFrame(1);
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
    m_desktop.showFrame(1);
    m_desktop.streamEnd(Error(20, "gone"));
    m_desktop.streamEnd({});
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
    CaptureSession inAFile(file / "x.zento", m_desktop, m_desktop.writerFactory());
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
        {"area over both",
         Target::Area{{1400, 0, 60, 10}},
         {},
         1,
         {120, 20},
         Rect{1400, 0, 60, 10},
         {100, 20}},
        {"area nowhere: main",
         Target::Area{{-50, -9, 4, 4}},
         {},
         2,
         {4, 4},
         Rect{-1490, -9, 4, 4},
         {1500, 19}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        m_desktop.displayList = {hiDpi, right};
        m_desktop.pointer = row.pointer;
        CaptureSession session = makeSession();
        session.target = row.target;
        session.excludeWindowIDs = {5};
        session.start();
        EXPECT_THAT(m_desktop.request->excludedWindowIDs, ElementsAre(5U));
        m_desktop.showFrame(1);
        m_desktop.input({.type = RawInputType::LeftUp, .time = 1, .point = {1450, 10}});
        session.stop();
        EXPECT_EQ(m_desktop.request->displayID, row.displayID);
        EXPECT_EQ(m_desktop.request->sourceRect, row.sourceRect);
        EXPECT_EQ(m_desktop.writerSize, row.size);
        EXPECT_EQ(eventsWithoutMoves().at(0).pos, row.mapped);
    }
}

} // namespace
} // namespace zento
