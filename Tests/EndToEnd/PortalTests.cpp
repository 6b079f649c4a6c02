#include "DesktopTest.h"
#include "SoundStage/FakeCamera.h"
#include "TestSupport/TemporaryFolder.h"
#include "WaylandStage/Page.h"
#include "WaylandStage/WaylandStage.h"
#include "WaylandStage/WaylandUser.h"
#include "ZentoCapture/Backends/PortalDesktop.h"
#include "ZentoCapture/CameraRecorder.h"
#include "ZentoCapture/CaptureSession.h"
#include "ZentoCapture/GlobalShortcuts.h"
#include "ZentoCapture/Journal.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCapture/ScreenshotTool.h"
#include "ZentoCapture/ScrollWheel.h"
#include "ZentoCapture/ScrollingCapture.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoMedia/VideoDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace zento {
namespace {

using test::WaylandStage;
using test::WaylandUser;

/// Devices whose user is the test.
class FakeDevices final : public InputDevices {
public:
    struct Desk {
        std::mutex mutex;
        std::deque<RawInput> inputs;
        int signal = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);

        void add(const RawInput& input)
        {
            const std::lock_guard lock(mutex);
            inputs.push_back(input);
            ::eventfd_write(signal, 1);
        }
    };

    explicit FakeDevices(Desk& desk)
        : m_desk(desk)
    {
    }

    int fileDescriptor() const override { return m_desk.signal; }

    void read(const Handler& handler) override
    {
        eventfd_t count = 0;
        ::eventfd_read(m_desk.signal, &count);
        const std::lock_guard lock(m_desk.mutex);
        for (; !m_desk.inputs.empty(); m_desk.inputs.pop_front())
            handler(m_desk.inputs.front());
    }

private:
    Desk& m_desk;
};

/// The middle of the client's white mark, in pixels; nothing where it is not shown.
std::optional<Vec2> markOf(const VideoFrame& frame)
{
    constexpr int kWhite = 700; // of 64 to 940
    const auto& luma = frame.planes10().y;
    double weight = 0;
    Vec2 sum;
    for (int y = 0; y < luma.height; ++y) {
        for (int x = 0; x < luma.width; ++x) {
            const double excess = luma.row(y)[x] - kWhite;
            if (excess > 0) {
                weight += excess;
                sum.x += excess * (x + 0.5);
                sum.y += excess * (y + 0.5);
            }
        }
    }
    return weight > 0 ? std::optional(Vec2{sum.x / weight, sum.y / weight}) : std::nullopt;
}

class PortalTest : public testing::Test {
protected:
    static WaylandStage& stage()
    {
        if (!s_stage)
            s_stage = std::make_unique<WaylandStage>(); // one for all tests of the process
        return *s_stage;
    }

    // Before a thread of a test looks for the session's bus, which is the stage's.
    void SetUp() override { stage(); }

    void TearDown() override
    {
        if (s_stage) {
            s_stage->answer("yes");
        }
    }

    static void TearDownTestSuite() { s_stage.reset(); }
    static void endStage() { s_stage.reset(); }

    PortalDesktop::Parts parts()
    {
        return {
            .tokens = RestoreTokens(m_folder / "screens"),
            .patience = {.service = std::chrono::seconds(20), .person = std::chrono::seconds(20)},
            .openDevices = [this]() -> std::unique_ptr<InputDevices> {
                return m_hasDevices ? std::make_unique<FakeDevices>(m_desk) : nullptr;
            }};
    }

    std::filesystem::path bundle() const { return m_folder / "test.zento"; }

    /// Until the client has seen that many more of a thing.
    static bool clientSees(const std::string& what, const std::function<void()>& act)
    {
        const auto count = [&] {
            return std::ranges::count_if(stage().clientLines(), [&](const std::string& line) {
                return line.starts_with(what);
            });
        };
        const auto before = count();
        act();
        return eventually([&] { return count() > before; });
    }

    static Vec2 lastPlaceOfClient()
    {
        std::istringstream line(stage().clientLines().back());
        std::string what;
        Vec2 point;
        line >> what >> point.x >> point.y;
        return point;
    }

    /// Where the client's window begins, in pixels of the monitor, once the compositor no longer
    /// lets it grow. It lies under the middle.
    static Vec2 cornerOfClient(WaylandUser& user, double scale)
    {
        const Vec2 middle{WaylandStage::kWidth / 2.0, WaylandStage::kHeight / 2.0};
        constexpr double kStep = 120;
        Vec2 point;
        EXPECT_TRUE(eventually([&] {
            user.move(middle.x - kStep, middle.y);
            settle();
            const Vec2 before = lastPlaceOfClient();
            user.move(middle.x, middle.y);
            settle();
            point = lastPlaceOfClient();
            return std::abs((point.x - before.x) * scale - kStep) < 0.01;
        }));
        return {middle.x - point.x * scale, middle.y - point.y * scale};
    }

    void clickOnDevices()
    {
        m_desk.add({.type = RawInputType::LeftDown, .time = monotonicSeconds()});
        m_desk.add({.type = RawInputType::LeftUp, .time = monotonicSeconds()});
    }

    /// The whole page, from the top.
    static ScrolledShot scrollPage(PortalDesktop& desktop, ScrollWheel& wheel)
    {
        const auto shoot = [&] { return ScreenshotTool::capture(desktop, Target::Area{kOnPage}); };
        EXPECT_TRUE(eventually([&] { // the compositor lets windows fade in
            return shoot().image->pixels().row(0)[20]
                   == test::Page::colour(static_cast<int>(kOnPage.y));
        }));
        return ScrollingCapture::run(kOnPage, {.shoot = shoot, .wheel = wheel, .settle = settle});
    }

    static constexpr Rect kOnPage{100, 60, 300, 480};

    /// Until what happens now is part of the log.
    static void settle()
    {
        const double until = monotonicSeconds() + 0.3;
        EXPECT_TRUE(eventually([&] { return monotonicSeconds() > until; }));
    }

    /// Runs the program to its end and returns what it printed.
    static std::string run(const std::string& name, std::vector<std::string> words)
    {
        words.insert(words.begin(), ZENTO_PROGRAM);
        const pid_t process = stage().start(name, words);
        EXPECT_TRUE(eventually([&] { return !ProcessGroup::isRunning(process); })) << name;
        return readFile(stage().home() / name);
    }

    test::TemporaryFolder m_folder;
    FakeDevices::Desk m_desk;
    bool m_hasDevices = true;

private:
    static std::unique_ptr<WaylandStage> s_stage;
};

std::unique_ptr<WaylandStage> PortalTest::s_stage;

/// A time through which the pointer rests at one place.
struct Rest {
    double from = 0; // seconds of CLOCK_MONOTONIC
    double to = 0;
};

class ScaledPortalTest : public PortalTest, public testing::WithParamInterface<double> {
protected:
    /// Clicks at places of the monitor, in pixels, and rests at each.
    std::vector<Rest> restAt(WaylandUser& user, const std::vector<Vec2>& places)
    {
        std::vector<Rest> rests;
        for (const Vec2 place : places) {
            EXPECT_TRUE(clientSees("move", [&] { user.move(place.x, place.y); }));
            settle();
            const double from = monotonicSeconds() - 0.1;
            EXPECT_TRUE(clientSees("press", [&] {
                user.click();
                clickOnDevices();
            }));
            settle();
            rests.push_back({from, monotonicSeconds() - 0.1});
        }
        return rests;
    }

    /// The log has the pointer where the film shows the client's mark, at each rest.
    static void
    expectMarks(const SessionBundle& recorded, double epoch, const std::vector<Rest>& rests)
    {
        std::vector<VideoFrame> frames;
        for (VideoDecoder decoder(recorded.screenMovieURL()); auto frame = decoder.next();)
            frames.push_back(*frame);
        ASSERT_FALSE(frames.empty());
        std::size_t clicks = 0;
        for (const Rest& rest : rests) {
            const auto shown =
                std::ranges::find_if(frames.rbegin(), frames.rend(), [&](const VideoFrame& frame) {
                    return frame.time() <= rest.to - epoch;
                });
            ASSERT_NE(shown, frames.rend());
            const auto mark = markOf(*shown);
            ASSERT_TRUE(mark);
            int moves = 0;
            for (const InputEvent& event : recorded.events) {
                if (event.t < rest.from - epoch || event.t > rest.to - epoch)
                    continue;
                ++moves;
                clicks += event.kind == EventKind::Click ? 1U : 0U;
                // The pointer's place is the corner of a pixel, the mark's the middle of its area.
                EXPECT_NEAR(event.pos.x, mark->x, 1) << event.t;
                EXPECT_NEAR(event.pos.y, mark->y, 1) << event.t;
            }
            EXPECT_GT(moves, 100 * (rest.to - rest.from)) << "at the rate of the poll";
        }
        EXPECT_EQ(clicks, rests.size());
    }
};

TEST_P(ScaledPortalTest, thePointerOfTheLogIsWhereTheFilmShowsIt)
{
    stage().setScale(GetParam());
    stage().startClient();
    WaylandUser user(stage());
    PortalDesktop desktop(parts());
    CaptureSession session(bundle(), desktop);
    session.start();
    ASSERT_TRUE(eventually([&] { return session.frameCount() > 0; }));
    const auto rests = restAt(
        user, {Vec2{300, 400}, Vec2{1201, 333}, Vec2{1707, 905}, Vec2{91, 1003}, Vec2{960, 540}});
    session.stop();

    const SessionBundle recorded = SessionBundle::load(bundle());
    EXPECT_EQ(recorded.meta.pixelWidth, WaylandStage::kWidth);
    EXPECT_EQ(recorded.meta.pixelHeight, WaylandStage::kHeight);
    EXPECT_DOUBLE_EQ(recorded.meta.scaleFactor, GetParam());
    expectMarks(recorded, session.epoch().value_or(0), rests);
}

TEST_P(ScaledPortalTest, aWindowIsRecordedByItself)
{
    const double scale = GetParam();
    stage().setScale(scale);
    stage().startClient({"600x400"});
    WaylandUser user(stage());
    const Vec2 corner = cornerOfClient(user, scale);
    PortalDesktop desktop(parts());
    CaptureSession session(bundle(), desktop);
    session.target = Target::Window{0};
    session.start();
    ASSERT_TRUE(eventually([&] { return session.frameCount() > 0; }));
    std::vector<Vec2> places;
    for (const Vec2 point : {Vec2{100, 100}, Vec2{580, 20}, Vec2{300, 390}, Vec2{150, 222}})
        places.push_back({corner.x + point.x * scale, corner.y + point.y * scale});
    const auto rests = restAt(user, places);
    session.stop();

    const SessionBundle recorded = SessionBundle::load(bundle());
    // A window comes as its program has drawn it, which is at a whole scale.
    EXPECT_DOUBLE_EQ(recorded.meta.scaleFactor, std::ceil(scale));
    EXPECT_EQ(recorded.meta.pixelWidth, 600 * recorded.meta.scaleFactor);
    EXPECT_EQ(recorded.meta.pixelHeight, 400 * recorded.meta.scaleFactor);
    expectMarks(recorded, session.epoch().value_or(0), rests);
}

INSTANTIATE_TEST_SUITE_P(
    Scales, ScaledPortalTest, testing::Values(1.0, 1.5, 2.0), [](const auto& each) {
        return "of" + std::to_string(static_cast<int>(each.param * 10)) + "tenths";
    });

/// What a recording says that does not begin.
std::optional<Error> failureOf(CaptureSession& session, const std::stop_token& stop = {})
{
    try {
        session.start(stop);
        return {};
    } catch (const Error& error) {
        return error;
    }
}

TEST_F(PortalTest, aDialogThatGivesNoLeaveIsASentenceAndLeavesNothing)
{
    struct Case {
        const char* name;
        const char* answer;
        std::chrono::milliseconds patience;
        bool isGivenUp;
        int code;
    };
    for (const Case& each :
         {Case{"no", "no", std::chrono::seconds(20), false, ErrorCode::kPortalDenied},
          Case{
              "no answer",
              "never",
              std::chrono::milliseconds(200),
              false,
              ErrorCode::kPortalSilent},
          Case{"given up", "never", std::chrono::seconds(20), true, ErrorCode::kCancelled}}) {
        stage().answer(each.answer);
        auto all = parts();
        all.patience.person = each.patience;
        PortalDesktop desktop(std::move(all));
        CaptureSession session(bundle(), desktop);
        std::stop_source stop;
        std::jthread impatience([&] {
            if (each.isGivenUp && eventually([] { return stage().dialogs() > 0; }))
                stop.request_stop();
        });
        const auto failure = failureOf(session, stop.get_token());
        ASSERT_TRUE(failure) << each.name;
        EXPECT_EQ(failure->code(), each.code) << each.name << ": " << failure->what();
        EXPECT_STRNE(failure->what(), "") << each.name;
        EXPECT_FALSE(std::filesystem::exists(bundle())) << each.name;
    }
}

TEST_F(PortalTest, aRecordingThatIsCutOffIsWhole)
{
    struct Case {
        const char* name;
        CaptureTarget target;
        std::function<void()> cutOff;
        bool isWanted;
    };
    for (const Case& each : std::vector<Case>{
             {"revoked", Target::Display{}, [] { stage().revoke(); }, true},
             {"its window has closed", Target::Window{0}, [] { stage().endClient(); }, false},
             {"the compositor has died",
              Target::Display{},
              [] { stage().killCompositor(); },
              false}}) {
        const auto folder = m_folder / each.name;
        PortalDesktop desktop(parts());
        CaptureSession session(folder, desktop);
        std::mutex mutex;
        std::optional<std::optional<Error>> end;
        session.onStreamStopped = [&](const std::optional<Error>& error) {
            const std::lock_guard lock(mutex);
            end = error;
        };
        stage().startClient();
        session.target = each.target;
        session.start();
        {
            WaylandUser user(stage());
            ASSERT_TRUE(clientSees("move", [&] { user.move(400, 300); })) << each.name;
            ASSERT_TRUE(eventually([&] { return session.frameCount() > 1; })) << each.name;
            ASSERT_TRUE(eventually([&] { return readFile(journalURL(folder)).contains("move"); }))
                << each.name;
        }
        each.cutOff();
        ASSERT_TRUE(eventually([&] {
            const std::lock_guard lock(mutex);
            return end.has_value();
        })) << each.name;
        EXPECT_EQ(end->has_value(), !each.isWanted) << each.name;
        session.stop();
        const SessionBundle recorded = SessionBundle::load(folder);
        VideoDecoder decoder(recorded.screenMovieURL());
        EXPECT_TRUE(decoder.next()) << each.name;
        EXPECT_FALSE(recorded.events.empty()) << each.name;
    }
    endStage(); // it has no compositor any more
}

TEST_F(PortalTest, theDialogComesOnceAndAgainWhenTheWordHasExpired)
{
    const auto shoot = [&] {
        PortalDesktop desktop(parts());
        return ScreenshotTool::capture(desktop, Target::Screen{0});
    };
    const unsigned before = stage().dialogs();
    EXPECT_EQ(shoot().image->width(), WaylandStage::kWidth);
    EXPECT_EQ(stage().dialogs(), before + 1);
    shoot();
    EXPECT_EQ(stage().dialogs(), before + 1) << "the word is known";
    for (const char* const expired : {"01234567-89ab-cdef-0123-456789abcdef", "no word at all"}) {
        writeFile(m_folder / "screens", std::string("screen 0\t") + expired + "\n");
        const unsigned shown = stage().dialogs();
        shoot();
        EXPECT_EQ(stage().dialogs(), shown + 1) << expired;
        shoot();
        EXPECT_EQ(stage().dialogs(), shown + 1) << "the new word is known";
    }
}

TEST_P(ScaledPortalTest, anAreaIsRecordedAsItsPartOfTheMonitor)
{
    const double scale = GetParam();
    stage().setScale(scale);
    stage().startClient();
    WaylandUser user(stage());
    PortalDesktop desktop(parts());
    CaptureSession session(bundle(), desktop);
    session.target = Target::Area{{100, 60, 480, 360}};
    session.start();
    ASSERT_TRUE(eventually([&] { return session.frameCount() > 0; }));
    std::vector<Vec2> places;
    for (const Vec2 point : {Vec2{120, 80}, Vec2{560, 380}, Vec2{333, 200}})
        places.push_back({point.x * scale, point.y * scale});
    const auto rests = restAt(user, places);
    user.move(1900, 1000); // elsewhere, where it is not seen
    settle();
    session.stop();

    const SessionBundle recorded = SessionBundle::load(bundle());
    EXPECT_DOUBLE_EQ(recorded.meta.scaleFactor, scale);
    EXPECT_EQ(recorded.meta.pixelWidth, 480 * scale);
    EXPECT_EQ(recorded.meta.pixelHeight, 360 * scale);
    expectMarks(recorded, session.epoch().value_or(0), rests);
    EXPECT_GT(recorded.events.back().pos.x, recorded.meta.pixelWidth) << "it is outside";
}

TEST_F(PortalTest, aWindowThatChangesItsSizeStaysInTheFrameOfTheFilm)
{
    struct Case {
        const char* name;
        std::string size;
        double shown; // pixels of the film for one of the window
    };
    const std::vector<Case> cases{
        {"smaller", "300x200", 2},
        {"taller", "600x800", 0.5},
        {"larger", "900x600", 2.0 / 3},
        {"as it was", "600x400", 1}};
    std::vector<std::string> sizes{"600x400"};
    for (const Case& each : cases)
        sizes.push_back(each.size);
    stage().startClient(sizes);
    WaylandUser user(stage());
    PortalDesktop desktop(parts());
    CaptureSession session(bundle(), desktop);
    session.target = Target::Window{0};
    const Vec2 corner = cornerOfClient(user, 1);
    session.start();
    ASSERT_TRUE(eventually([&] { return session.frameCount() > 0; }));
    struct Look {
        double time;
        Vec2 place; // in the window, which the compositor moves when it grows beyond the monitor
    };
    std::vector<Look> looks;
    for (const Case& each : cases) {
        ASSERT_TRUE(clientSees("sized", [&] { user.type(KEY_R); })) << each.name;
        settle();
        ASSERT_TRUE(clientSees("move", [&] { user.move(corner.x + 20, corner.y + 100); }));
        ASSERT_TRUE(clientSees("move", [&] { user.move(corner.x + 200, corner.y + 150); }));
        settle();
        looks.push_back({monotonicSeconds() - 0.1, lastPlaceOfClient()});
    }
    session.stop();

    const SessionBundle recorded = SessionBundle::load(bundle());
    EXPECT_EQ(recorded.meta.pixelWidth, 600);
    EXPECT_EQ(recorded.meta.pixelHeight, 400);
    std::vector<VideoFrame> frames;
    for (VideoDecoder decoder(recorded.screenMovieURL()); auto frame = decoder.next();)
        frames.push_back(*frame);
    const double epoch = session.epoch().value_or(0);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto shown =
            std::ranges::find_if(frames.rbegin(), frames.rend(), [&](const VideoFrame& frame) {
                return frame.time() <= looks[i].time - epoch;
            });
        ASSERT_NE(shown, frames.rend()) << cases[i].name;
        const auto mark = markOf(*shown);
        ASSERT_TRUE(mark) << cases[i].name;
        EXPECT_NEAR(mark->x, looks[i].place.x * cases[i].shown, 1) << cases[i].name;
        EXPECT_NEAR(mark->y, looks[i].place.y * cases[i].shown, 1) << cases[i].name;
        const auto event = std::ranges::find_if(recorded.events, [&](const InputEvent& each) {
            return each.t >= looks[i].time - epoch;
        });
        ASSERT_NE(event, recorded.events.end()) << cases[i].name;
        EXPECT_NEAR(event->pos.x, mark->x, 1) << cases[i].name;
        EXPECT_NEAR(event->pos.y, mark->y, 1) << cases[i].name;
    }
}

/// The newest line of the client that begins so, without that.
std::vector<double> numbersOf(const std::vector<std::string>& lines, const std::string& what)
{
    std::vector<double> numbers;
    const auto line = std::ranges::find_if(
        lines.rbegin(), lines.rend(), [&](const auto& each) { return each.starts_with(what); });
    if (line != lines.rend()) {
        std::istringstream words(line->substr(what.size()));
        for (double number = 0; words >> number;)
            numbers.push_back(number);
    }
    return numbers;
}

TEST_F(PortalTest, aClickHasItsElementWhereItsWindowIsKnown)
{
    struct Case {
        const char* name;
        const char* state;
        double scale;
        CaptureTarget target;
        bool hasElement;
    };
    for (const Case& each : std::vector<Case>{
             {"a window", "window", 1, Target::Window{0}, true},
             {"a window of twice the pixels", "window", 2, Target::Window{0}, true},
             {"a window over the whole monitor", "fullscreen", 1, Target::Display{}, true},
             {"a window somewhere", "window", 1, Target::Display{}, false}}) {
        stage().setScale(each.scale);
        stage().startGtkClient(each.state);
        WaylandUser user(stage());
        std::vector<double> button;
        ASSERT_TRUE(eventually([&] {
            button = numbersOf(stage().clientLines(), "button");
            return button.size() == 4;
        })) << each.name;
        const Vec2 corner = cornerOfClient(user, each.scale);
        PortalDesktop desktop(parts());
        const auto folder = m_folder / each.name;
        CaptureSession session(folder, desktop);
        session.target = each.target;
        session.start();
        ASSERT_TRUE(eventually([&] { return session.frameCount() > 0; })) << each.name;
        const auto click = [&](Vec2 part) { // of the button, from its corner
            user.move(
                corner.x + (button[0] + part.x * button[2]) * each.scale,
                corner.y + (button[1] + part.y * button[3]) * each.scale);
            settle();
            EXPECT_TRUE(clientSees("clicked", [&] {
                user.click();
                clickOnDevices();
            })) << each.name;
            settle();
        };
        click({0.5, 0.5});
        click({0.1, 0.9});
        settle(); // the bus answers
        session.stop();

        std::vector<InputEvent> clicks;
        std::ranges::copy_if(
            SessionBundle::load(folder).events, std::back_inserter(clicks), [](const auto& event) {
                return event.kind == EventKind::Click;
            });
        ASSERT_EQ(clicks.size(), 2U) << each.name;
        for (const InputEvent& event : clicks)
            ASSERT_EQ(event.ax.has_value(), each.hasElement) << each.name;
        if (!each.hasElement)
            continue;
        EXPECT_EQ(clicks[0].ax->role, "AXButton") << each.name;
        EXPECT_EQ(clicks[0].ax->title, "Save") << each.name;
        const Rect frame = clicks[0].ax->frame;
        EXPECT_EQ(frame.w, button[2] * each.scale) << each.name;
        EXPECT_EQ(frame.h, button[3] * each.scale) << each.name;
        EXPECT_NEAR(frame.center().x, clicks[0].pos.x, 1) << each.name;
        EXPECT_NEAR(frame.center().y, clicks[0].pos.y, 1) << each.name;
        EXPECT_EQ(clicks[1].ax->frame, frame) << each.name;
    }
    stage().setScale(1);
}

TEST_F(PortalTest, anAreaIsAPartOfTheChosenMonitorInItsPoints)
{
    stage().setScale(2);
    stage().startClient(); // a patch of 80 points in the corner is red
    PortalDesktop desktop(parts());
    Shot shot;
    ASSERT_TRUE(eventually([&] { // the compositor lets windows fade in
        shot = ScreenshotTool::capture(desktop, Target::Area{{60, 60, 40, 40}});
        return shot.image->pixels().row(39)[39] == 0xFFFF0000U;
    }));
    EXPECT_EQ(shot.image->width(), 80);
    EXPECT_EQ(shot.image->height(), 80);
    EXPECT_EQ(shot.image->pixels().row(41)[41], 0xFF102040U);
    EXPECT_THROW(ScreenshotTool::capture(desktop, Target::Area{{900, 500, 400, 400}}), Error)
        << "it reaches beyond the monitor";
    stage().setScale(1);
}

/// Source time that a film shows.
double kept(const EditPlan& plan)
{
    double seconds = 0;
    for (const SpeedSegment& segment : plan.timeRemap)
        seconds += segment.sourceEnd - segment.sourceStart;
    return seconds;
}

TEST_F(PortalTest, theFilmWithoutClicksAndKeysShowsTheSamePlaces)
{
    stage().startClient();
    WaylandUser user(stage());
    PortalDesktop desktop(parts());
    CaptureSession seeing(m_folder / "seeing.zento", desktop);
    seeing.start();
    m_hasDevices = false;
    PortalDesktop otherDesktop(parts());
    CaptureSession blind(m_folder / "blind.zento", otherDesktop);
    blind.start();
    const auto act = [&](Vec2 place, double rest) {
        ASSERT_TRUE(clientSees("move", [&] { user.move(place.x, place.y); }));
        settle();
        ASSERT_TRUE(clientSees("press", [&] {
            user.click();
            clickOnDevices();
        }));
        const double until = monotonicSeconds() + rest;
        ASSERT_TRUE(eventually([&] { return monotonicSeconds() > until; }));
    };
    act({300, 300}, 1);
    act({1500, 800}, 4); // long enough to be cut
    act({400, 900}, 1);
    act({960, 200}, 1);
    seeing.stop();
    blind.stop();

    const auto planOf = [&](const char* name) {
        const std::string folder = m_folder / (std::string(name) + ".zento");
        return decodePlan(run(std::string(name) + ".plan", {"plan", folder}));
    };
    const EditPlan with = planOf("seeing");
    const EditPlan without = planOf("blind");
    EXPECT_EQ(with.clicks.size(), 4U);
    EXPECT_TRUE(without.clicks.empty());
    const double duration = SessionBundle::load(m_folder / "blind.zento").meta.duration;
    EXPECT_LT(kept(with), duration - 1);
    EXPECT_LT(kept(without), duration - 1);
    const auto shown = without.focusMoments.value_or(std::vector<FocusMoment>());
    const auto meant = with.focusMoments.value_or(std::vector<FocusMoment>());
    EXPECT_GE(shown.size(), 3U); // nobody brought the pointer to its first place, as far as is seen
    for (const FocusMoment& moment : shown) {
        EXPECT_EQ(moment.kind, "dwell");
        EXPECT_TRUE(std::ranges::any_of(meant, [&](const FocusMoment& other) {
            return std::abs(other.sourceTime - moment.sourceTime) < 1;
        })) << moment.sourceTime;
    }
    RecordProperty("keptWith", std::to_string(kept(with)));
    RecordProperty("keptWithout", std::to_string(kept(without)));
}

TEST_F(PortalTest, theDesktopTakesItsOwnPictureIfItDoes)
{
    const auto file = m_folder / "shot.png";
    Canvas drawn(30, 20);
    savePng(drawn, file);
    stage().setShot(file);
    PortalDesktop desktop(parts());
    EXPECT_EQ(ScreenshotTool::capture(desktop, Target::Display{}).image->width(), 30);
    EXPECT_FALSE(std::filesystem::exists(file)) << "it was made for us";
}

TEST_P(ScaledPortalTest, aPageIsScrolledWithAHandThatTheUserLends)
{
    const double scale = GetParam();
    stage().setScale(scale);
    stage().startPage();
    PortalDesktop desktop(parts());
    const unsigned before = stage().dialogs();
    const auto wheel = desktop.scrollWheel({});
    const ScrolledShot scrolled = scrollPage(desktop, *wheel);
    EXPECT_EQ(stage().dialogs(), before + 1);
    const Canvas& image = *scrolled.shot.image;
    const double below = test::Page::kHeight - WaylandStage::kHeight / scale;
    EXPECT_EQ(image.width(), kOnPage.w * scale);
    ASSERT_EQ(image.height(), (kOnPage.h + below) * scale)
        << testing::PrintToString(stage().clientLines()) << scrolled.seams.size();
    int wrong = 0;
    for (int y = 0; y < image.height(); ++y) {
        const int row = static_cast<int>(kOnPage.y + (y + 0.5) / scale);
        // At a fraction of a scale a row may show two stripes.
        const bool isWithin =
            row % test::Page::kStripe > 1 && row % test::Page::kStripe < test::Page::kStripe - 2;
        wrong += isWithin && image.pixels().row(y)[20] != test::Page::colour(row) ? 1 : 0;
    }
    EXPECT_EQ(wrong, 0);
}

// The pointer stands where the first page was scrolled, and nothing has moved it since.
TEST_F(PortalTest, aPageUnderAPointerThatStandsStillIsScrolledAsWell)
{
    stage().setScale(1);
    for (const char* page : {"the first", "the second"}) {
        SCOPED_TRACE(page);
        stage().startPage();
        PortalDesktop desktop(parts());
        const auto wheel = desktop.scrollWheel({});
        const int height = scrollPage(desktop, *wheel).shot.image->height();
        EXPECT_EQ(height, kOnPage.h + test::Page::kHeight - WaylandStage::kHeight)
            << testing::PrintToString(stage().clientLines());
    }
}

TEST_F(PortalTest, aHandThatIsNotLentIsASentence)
{
    struct Case {
        const char* name;
        const char* answer;
        unsigned devices;
        int code;
    };
    for (const Case& each :
         {Case{"no", "no", 7, ErrorCode::kPortalDenied},
          Case{"only to look", "yes", 0, ErrorCode::kNoInput}}) {
        stage().answer(each.answer);
        stage().lendDevices(each.devices);
        PortalDesktop desktop(parts());
        try {
            desktop.scrollWheel({});
            ADD_FAILURE() << each.name;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), each.code) << each.name << ": " << error.what();
            EXPECT_STRNE(error.what(), "") << each.name;
        }
    }
    stage().lendDevices(7);
}

TEST_F(PortalTest, aKeyOfTheDesktopReachesTheProgram)
{
    std::mutex mutex;
    std::vector<std::string> pressed;
    const auto count = [&] {
        const std::lock_guard lock(mutex);
        return pressed.size();
    };
    std::jthread listening([&](const std::stop_token& stop) {
        try {
            listenToShortcuts(
                std::vector<GlobalShortcut>{
                    {"toggleRecording", "Start or stop", "LOGO+ALT+r"},
                    {"capturePanel", "Panel", ""}},
                [&](const std::string& id) {
                    const std::lock_guard lock(mutex);
                    pressed.push_back(id);
                },
                stop);
        } catch (const Error& error) {
            ADD_FAILURE() << error.what();
        }
    });
    ASSERT_TRUE(eventually([&] { return stage().shortcuts().size() == 2; }));
    EXPECT_THAT(stage().shortcuts(), testing::Contains("toggleRecording: Start or stop"));
    stage().press("capturePanel");
    ASSERT_TRUE(eventually([&] { return count() > 0; }));
    const std::lock_guard lock(mutex);
    EXPECT_THAT(pressed, testing::ElementsAre("capturePanel"));
}

TEST_F(PortalTest, theCameraComesThroughItsPortalInASandbox)
{
    const std::vector<std::uint8_t> grey(std::size_t{64} * 48 * 3 / 2, 128);
    const test::FakeCamera camera(
        "cam",
        {.form = test::FakeCameraForm::I420, .width = 64, .height = 48, .rate = 30},
        [&](int, double) { return grey; });
    const auto file = m_folder / "webcam.mov";
    stage().answer("no");
    CameraRecorder refused(CameraAccess::Portal);
    try {
        refused.start(file, {});
        ADD_FAILURE() << "it was refused";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kNoCamera) << error.what();
    }
    EXPECT_FALSE(refused.stop());

    stage().forgetCamera();
    stage().answer("yes");
    CameraRecorder recorder(CameraAccess::Portal);
    recorder.start(file, {});
    ASSERT_TRUE(eventually([&] { return recorder.startTime().has_value(); }));
    ASSERT_TRUE(eventually([&, shown = camera.shown()] { return camera.shown() > shown + 3; }));
    EXPECT_TRUE(recorder.stop());
    EXPECT_TRUE(VideoDecoder(file).next());
}

TEST_F(PortalTest, aDesktopThatDoesNotTellThePointerIsRecordedWithItsOwn)
{
    stage().setCursorModes(3);
    stage().startClient();
    WaylandUser user(stage());
    PortalDesktop desktop(parts());
    CaptureSession session(bundle(), desktop);
    session.start();
    ASSERT_TRUE(clientSees("move", [&] { user.move(400, 300); }));
    ASSERT_TRUE(clientSees("press", [&] {
        user.click();
        clickOnDevices();
    }));
    ASSERT_TRUE(eventually([&] { return session.frameCount() > 1; }));
    settle();
    session.stop();
    EXPECT_TRUE(SessionBundle::load(bundle()).events.empty()) << "nobody knows where it was";
    EXPECT_THAT(desktop.shortcoming().value_or(""), testing::HasSubstr("pointer"));
    stage().setCursorModes(7);
}

TEST_F(PortalTest, theProgramMakesAFilmOfAWaylandDesktop)
{
    stage().startClient();
    const pid_t recorder = stage().start("record.log", {ZENTO_PROGRAM, "record", "--seconds", "5"});
    const auto said = [&] {
        const auto log = stage().home() / "record.log";
        return std::filesystem::exists(log) ? readFile(log) : "";
    };
    ASSERT_TRUE(eventually([&] { return said().contains("Recording;"); })) << said();
    WaylandUser user(stage());
    for (const Vec2 place : {Vec2{300, 400}, Vec2{1500, 800}, Vec2{300, 800}}) {
        ASSERT_TRUE(clientSees("move", [&] { user.move(place.x, place.y); }));
        ASSERT_TRUE(clientSees("press", [&] { user.click(); }));
        ASSERT_TRUE(clientSees("key", [&] { user.type(KEY_A); }));
        settle();
        settle(); // long enough to be a place of interest
    }
    ASSERT_TRUE(eventually([&] { return !ProcessGroup::isRunning(recorder); }));
    const std::string words = said();
    EXPECT_THAT(words, testing::HasSubstr("usermod -aG input"));
    const std::size_t lastLine = words.rfind('\n', words.size() - 2);
    const std::filesystem::path folder = words.substr(lastLine + 1, words.size() - lastLine - 2);
    const SessionBundle recorded = SessionBundle::load(folder);
    EXPECT_GT(recorded.meta.duration, 0);
    EXPECT_TRUE(std::ranges::any_of(recorded.events, [](const InputEvent& event) {
        return std::abs(event.pos.x - 1500) <= 1 && std::abs(event.pos.y - 800) <= 1;
    }));
    EXPECT_TRUE(recorded.meta.hasPointerOnly());
    EXPECT_THAT(run("plan.log", {"plan", folder}), testing::HasSubstr("dwell"));
    EXPECT_THAT(run("render.log", {"render", folder}), testing::HasSubstr(".mp4"));
    VideoDecoder film(recorded.filmURL());
    std::size_t frames = 0;
    while (film.next())
        ++frames;
    EXPECT_GT(frames, 60U);
    // What is missing is said once.
    EXPECT_THAT(
        run("again.log", {"record", "--seconds", "1"}),
        testing::Not(testing::HasSubstr("usermod -aG input")));
}

} // namespace
} // namespace zento
