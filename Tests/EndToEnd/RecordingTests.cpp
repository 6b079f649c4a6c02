#include "ClientWindow.h"
#include "DesktopTest.h"
#include "TestSupport/DiskLimits.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Demo/ElementFinder.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/CaptureSession.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoMedia/VideoDecoder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zento {
namespace {

class RecordingTest : public DesktopTest {
protected:
    std::filesystem::path bundleURL() const { return m_folder / "test.zento"; }

    bool waitForFrames(const CaptureSession& session, int count)
    {
        return eventually([&] { return session.frameCount() >= count; });
    }

    /// Until the recording has its epoch behind it. The server's stamps are whole milliseconds, cut
    /// off: an act right after the first frame can carry a time before it, and is then no part of
    /// the recording.
    bool waitForEpoch(const CaptureSession& session)
    {
        constexpr double kStampSeconds = 0.005;
        const bool hasFrame = waitForFrames(session, 1);
        const double now = monotonicSeconds();
        return hasFrame && eventually([&] { return monotonicSeconds() > now + kStampSeconds; });
    }

    /// The first program that asks for the bus brings it up, and it leaves its address here.
    static std::string accessibilityBusAddress()
    {
        const X11Connection connection(display());
        const auto bytes = connection.property(connection.root(), "AT_SPI_BUS");
        return {bytes.begin(), bytes.end()};
    }

private:
    test::TemporaryFolder m_folder;
};

struct Shade {
    double time = 0;
    int luma = 0; // 10 bits
};

/// The brightness of one pixel in every frame of a movie.
std::vector<Shade> shades(const std::filesystem::path& movie, int x, int y)
{
    std::vector<Shade> result;
    VideoDecoder decoder(movie);
    while (const auto frame = decoder.next()) {
        result.push_back({frame->time(), frame->planes10().y.row(y)[x]});
    }
    return result;
}

std::vector<InputEvent> ofKind(const std::vector<InputEvent>& events, EventKind kind)
{
    std::vector<InputEvent> result;
    std::ranges::copy_if(events, std::back_inserter(result), [&](const InputEvent& event) {
        return event.kind == kind;
    });
    return result;
}

TEST_F(RecordingTest, aClickAndItsEffectLieTogetherInTheBundle)
{
    constexpr int kClicks = 5;
    ColourWindow window(display(), 100, 100, 80, 60);
    CaptureSession session(bundleURL(), *m_desktop);
    m_user.move(130, 120);
    session.start();
    ASSERT_TRUE(waitForEpoch(session));
    for (int click = 0; click < kClicks; ++click) {
        m_user.move(130 + click, 120);
        m_user.click(1);
        ASSERT_TRUE(waitForFrames(session, click + 2));
    }
    session.stop();

    const SessionBundle bundle = SessionBundle::load(bundleURL());
    EXPECT_EQ(bundle.meta.pixelWidth, kWidth);
    EXPECT_EQ(bundle.meta.pixelHeight, kHeight);
    const auto clicks = ofKind(bundle.events, EventKind::Click);
    const auto frames = shades(bundle.screenMovieURL(), 110, 110);
    ASSERT_EQ(clicks.size(), std::size_t{kClicks});
    ASSERT_EQ(frames.size(), std::size_t{kClicks} + 1); // none but what a click made
    EXPECT_EQ(frames[0].time, 0);
    EXPECT_NEAR(frames.back().time, bundle.meta.duration, 1e-3);
    double least = 1;
    for (std::size_t i = 0; i < clicks.size(); ++i) {
        EXPECT_EQ(clicks[i].pos, (Vec2{130.0 + static_cast<double>(i), 120}));
        // Black and white in turn: the frame is the one that this click made.
        EXPECT_NEAR(frames[i + 1].luma, i % 2 == 0 ? 940 : 64, 8);
        const double lag = frames[i + 1].time - clicks[i].t;
        EXPECT_GT(lag, -0.001) << "an effect before its cause";
        least = std::min(least, lag);
    }
    // The application and the machine may take their time once, but not a clock that is off.
    EXPECT_LT(least, 2.0 / 60);
    EXPECT_GE(ofKind(bundle.events, EventKind::Move).size(), std::size_t{kClicks});
    EXPECT_TRUE(std::ranges::is_sorted(bundle.events, {}, &InputEvent::t));
}

TEST_F(RecordingTest, anAreaHasItsOwnSizeAndOrigin)
{
    ColourWindow window(display(), 100, 100, 80, 60);
    CaptureSession session(bundleURL(), *m_desktop);
    session.target = Target::Area{{90, 95, 101, 51}};
    session.start();
    ASSERT_TRUE(waitForEpoch(session));
    m_user.move(105, 105);
    m_user.click(1);
    ASSERT_TRUE(waitForFrames(session, 2));
    session.stop();
    const SessionBundle bundle = SessionBundle::load(bundleURL());
    EXPECT_EQ(ofKind(bundle.events, EventKind::Click).at(0).pos, (Vec2{15, 10}));
    // The window's corner lies at (10, 5) of the movie; the codec blurs the edge a little.
    const auto lumaAt = [&](int x, int y) {
        return shades(bundle.screenMovieURL(), x, y).at(1).luma;
    };
    EXPECT_GT(lumaAt(11, 6), 700);
    EXPECT_LT(lumaAt(8, 6), 700);
    EXPECT_LT(lumaAt(11, 3), 700);
    EXPECT_EQ(VideoDecoder(bundle.screenMovieURL()).naturalSize(), (VideoSize{100, 50}));
}

/// The real desktop, with a count of the elements its lookups found and of the looks at a window
/// that found it in one place.
class CountingDesktop final : public Desktop {
public:
    explicit CountingDesktop(Desktop& desktop)
        : m_desktop(desktop)
    {
    }

    int foundCount() const { return *m_count; }

    /// Until the recording has learnt that its window is at `frame`.
    bool waitForWindowAt(const Rect& frame)
    {
        {
            const std::lock_guard lock(m_looks->mutex);
            m_looks->frame = frame;
            m_looks->count = 0;
        }
        // When the second look comes, what the first one found has been used.
        return eventually([this] {
            const std::lock_guard lock(m_looks->mutex);
            return m_looks->count >= 2;
        });
    }

    std::vector<DisplayInfo> displays() override { return m_desktop.displays(); }
    std::optional<WindowInfo> window(std::uint32_t windowID) override
    {
        return m_desktop.window(windowID);
    }
    WindowFrameQuery windowFrameQuery(std::uint32_t windowID) override
    {
        return [looks = m_looks, query = m_desktop.windowFrameQuery(windowID)] {
            const std::optional<Rect> frame = query();
            const std::lock_guard lock(looks->mutex);
            looks->count += frame && *frame == looks->frame ? 1 : 0;
            return frame;
        };
    }
    std::optional<Vec2> pointerPosition() override { return m_desktop.pointerPosition(); }
    std::optional<std::string> frontmostApplication() override
    {
        return m_desktop.frontmostApplication();
    }
    std::unique_ptr<FrameSource> frameSource(const FrameRequest& request) override
    {
        return m_desktop.frameSource(request);
    }
    std::unique_ptr<InputSource> inputSource() override { return m_desktop.inputSource(); }
    std::unique_ptr<ElementLookup> elementLookup() override
    {
        return std::make_unique<Lookup>(m_desktop.elementLookup(), m_count);
    }

private:
    struct Looks {
        std::mutex mutex;
        Rect frame;
        int count = 0;
    };
    using Count = std::shared_ptr<std::atomic<int>>;

    class Lookup final : public ElementLookup {
    public:
        Lookup(std::unique_ptr<ElementLookup> lookup, Count count)
            : m_lookup(std::move(lookup))
            , m_count(std::move(count))
        {
        }
        void lookUp(Vec2 point, Handler found) override
        {
            m_lookup->lookUp(point, [found, count = m_count](const Element& element) {
                found(element);
                ++*count;
            });
        }

    private:
        std::unique_ptr<ElementLookup> m_lookup;
        Count m_count;
    };

    Desktop& m_desktop;
    Count m_count = std::make_shared<std::atomic<int>>(0);
    std::shared_ptr<Looks> m_looks = std::make_shared<Looks>();
};

TEST_F(RecordingTest, clicksLieOnTheRecordedWindowWhereverItGoes)
{
    ClientWindow window(display(), 60, 60, 200, 120, 0x000000);
    const auto frame = [&] { return m_desktop->window(window.id())->frame; };
    const Rect recorded = frame();
    CountingDesktop counting(*m_desktop);
    CaptureSession session(bundleURL(), counting);
    session.target = Target::Window{window.id()};
    session.start();
    ASSERT_TRUE(waitForEpoch(session));
    const auto clickOnMark = [&] {
        const Vec2 origin = window.origin();
        m_user.move(static_cast<int>(origin.x) + 12, static_cast<int>(origin.y) + 12);
        m_user.click(1);
    };
    const auto waitForSize = [&](double width, double height) {
        return eventually([&] {
            return frame().w == recorded.w - 200 + width && frame().h == recorded.h - 120 + height;
        });
    };
    clickOnMark();
    window.moveTo(300, 150);
    ASSERT_TRUE(eventually([&] { return frame().x > 250; }));
    ASSERT_TRUE(counting.waitForWindowAt(frame()));
    clickOnMark();
    window.resize(100, 120);
    ASSERT_TRUE(waitForSize(100, 120));
    ASSERT_TRUE(counting.waitForWindowAt(frame()));
    clickOnMark();
    window.resize(300, 140);
    ASSERT_TRUE(waitForSize(300, 140));
    ASSERT_TRUE(counting.waitForWindowAt(frame()));
    clickOnMark();
    // The last frame shows the window as it is now.
    const int frames = session.frameCount();
    window.setColour(0x404040);
    ASSERT_TRUE(waitForFrames(session, frames + 1));
    session.stop();

    const SessionBundle bundle = SessionBundle::load(bundleURL());
    EXPECT_EQ(bundle.meta.appName, "Client");
    EXPECT_EQ(bundle.meta.pixelWidth, static_cast<int>(recorded.w) / 2 * 2);
    const auto clicks = ofKind(bundle.events, EventKind::Click);
    ASSERT_EQ(clicks.size(), 4U);
    EXPECT_EQ(clicks[1].pos, clicks[0].pos);
    EXPECT_EQ(clicks[2].pos, clicks[0].pos); // narrower, as high as before: not made larger
    const double scale = recorded.w / (recorded.w + 100);
    EXPECT_DOUBLE_EQ(clicks[3].pos.x, clicks[0].pos.x * scale);
    EXPECT_DOUBLE_EQ(clicks[3].pos.y, clicks[0].pos.y * scale);
    const auto lumaAt = [&](double x, double y) {
        return shades(bundle.screenMovieURL(), static_cast<int>(x), static_cast<int>(y))
            .back()
            .luma;
    };
    EXPECT_GT(lumaAt(clicks[3].pos.x, clicks[3].pos.y), 900); // the mark is white
    EXPECT_LT(lumaAt(clicks[3].pos.x + 40, clicks[3].pos.y + 40), 500);
}

/// Where an element is, by a way of its own over the accessibility bus.
Rect frameOfElement(const ElementFinder& finder, const ElementQuery& query)
{
    std::optional<FoundElement> found;
    const bool isThere = eventually([&] {
        const auto before = std::exchange(found, finder.find(query));
        return found && before && before->frame == found->frame; // it has come to rest
    });
    return isThere ? found->frame : Rect{};
}

TEST_F(RecordingTest, aClickKnowsTheElementItHit)
{
    const pid_t dialog = stage().start(
        {"/usr/bin/zenity", "--entry", "--text=Name", "--ok-label=Save it", "--title=Who"});
    std::string address;
    ASSERT_TRUE(eventually([&] { return !(address = accessibilityBusAddress()).empty(); }));
    const ElementFinder finder(address);
    const Rect button = frameOfElement(finder, {.role = "push button", .name = "Save it"});
    const Rect entry = frameOfElement(finder, {.window = "Who", .role = "text"});
    ASSERT_GT(button.w * button.h * entry.w * entry.h, 0);

    CountingDesktop counting(*m_desktop);
    CaptureSession session(bundleURL(), counting);
    session.start();
    ASSERT_TRUE(waitForEpoch(session));
    int clicks = 0;
    for (const Rect& frame : {entry, button}) {
        m_user.move(static_cast<int>(frame.center().x), static_cast<int>(frame.center().y));
        m_user.press(1);
        ++clicks;
        // The dialog goes with the release, and an answer with the dialog.
        EXPECT_TRUE(eventually([&] { return counting.foundCount() == clicks; }));
        m_user.release(1);
    }
    EXPECT_TRUE(eventually([&] { return !ProcessGroup::isRunning(dialog); }));
    session.stop();
    const SessionBundle bundle = SessionBundle::load(bundleURL());
    EXPECT_EQ(bundle.meta.appName, "Zenity");
    const auto events = ofKind(bundle.events, EventKind::Click);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].ax, (AXInfo{.role = "AXTextField", .frame = entry}));
    EXPECT_EQ(events[1].ax, (AXInfo{.role = "AXButton", .frame = button, .title = "Save it"}));
}

TEST_F(RecordingTest, aServerThatDiesEndsTheStreamAndLeavesABundle)
{
    for (const bool recordsWindow : {false, true}) {
        SCOPED_TRACE(recordsWindow ? "window" : "display");
        auto mortal = std::make_unique<PrivateDesktop>(DesktopSize{320, 200});
        const auto doomed = openDesktop(mortal->display());
        const ColourWindow window(mortal->display(), 10, 10, 80, 60);
        CaptureSession session(bundleURL(), *doomed);
        if (recordsWindow) {
            session.target = Target::Window{window.id()};
        }
        std::atomic<int> ends = 0;
        session.onStreamStopped = [&](const std::optional<Error>& error) {
            ends += error ? 1 : 100;
        };
        session.start();
        ASSERT_TRUE(waitForFrames(session, 1));
        mortal.reset();
        EXPECT_TRUE(eventually([&] { return ends > 0; }));
        session.stop();
        EXPECT_EQ(ends, 1);
        const auto frames = shades(SessionBundle::load(bundleURL()).screenMovieURL(), 0, 0);
        EXPECT_EQ(frames.size(), static_cast<std::size_t>(session.frameCount()));
        EXPECT_TRUE(doomed->displays().empty());
        EXPECT_FALSE(doomed->window(window.id()));
    }
}

TEST_F(RecordingTest, aFullDiskIsToldAtTheEndByTheMoviesName)
{
    ColourWindow window(display(), 0, 0, kWidth, kHeight);
    CaptureSession session(bundleURL(), *m_desktop);
    session.start();
    ASSERT_TRUE(waitForFrames(session, 1));
    std::optional<test::FileSizeLimit> limit(
        std::in_place, 1); // nothing that comes from here on reaches the disk
    window.setColour(0x88FF33);
    ASSERT_TRUE(
        eventually([&] { return session.frameCount() + session.droppedFrameCount() >= 2; }));
    try {
        session.stop();
        FAIL() << "a movie that is not whole counts as one";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("screen.mov"));
    }
    EXPECT_FALSE(std::filesystem::exists(bundleURL() / "meta.json"));
    // A log that this program writes was held to the limit as well.
    limit.reset();
    std::cerr.clear();
}

} // namespace
} // namespace zento
