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
#include <memory>
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

/// The real desktop, with a count of the elements its lookups found.
class CountingDesktop final : public Desktop {
public:
    explicit CountingDesktop(Desktop& desktop)
        : m_desktop(desktop)
    {
    }

    int foundCount() const { return *m_count; }

    std::vector<DisplayInfo> displays() override { return m_desktop.displays(); }
    std::optional<WindowInfo> window(std::uint32_t windowID) override
    {
        return m_desktop.window(windowID);
    }
    WindowFrameQuery windowFrameQuery(std::uint32_t windowID) override
    {
        return m_desktop.windowFrameQuery(windowID);
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
};

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
    auto mortal = std::make_unique<PrivateDesktop>(DesktopSize{320, 200});
    const auto doomed = openDesktop(mortal->display());
    CaptureSession session(bundleURL(), *doomed);
    std::atomic<int> ends = 0;
    session.onStreamStopped = [&](const std::optional<Error>& error) { ends += error ? 1 : 100; };
    session.start();
    ASSERT_TRUE(waitForFrames(session, 1));
    mortal.reset();
    EXPECT_TRUE(eventually([&] { return ends > 0; }));
    session.stop();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(shades(SessionBundle::load(bundleURL()).screenMovieURL(), 0, 0).size(), 1U);
    EXPECT_TRUE(doomed->displays().empty());
}

TEST_F(RecordingTest, aFullDiskIsToldAtTheEndByTheMoviesName)
{
    ColourWindow window(display(), 0, 0, kWidth, kHeight);
    CaptureSession session(bundleURL(), *m_desktop);
    session.start();
    ASSERT_TRUE(waitForFrames(session, 1));
    const test::FileSizeLimit limit(1); // nothing that comes from here on reaches the disk
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
}

} // namespace
} // namespace zento
