#include "DesktopTest.h"
#include "TestSupport/Random.h"
#include "ZentoCapture/Journal.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoMedia/VideoDecoder.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace zento {
namespace {

namespace fs = std::filesystem;

/// Recordings by the program itself, in a process that can be killed.
class KillTest : public DesktopTest {
protected:
    struct Recorder {
        pid_t process = 0;
        fs::path bundle;
        double epoch = 0;
    };

    static pid_t start(std::vector<std::string> words)
    {
        words.insert(words.begin(), ZENTO_PROGRAM);
        return stage().start(words);
    }

    static bool run(const std::vector<std::string>& words)
    {
        const pid_t process = start(words);
        return eventually([&] { return !ProcessGroup::isRunning(process); });
    }

    static JournalContents journal(const fs::path& bundle)
    {
        try {
            return decodeJournal(readFile(journalURL(bundle)));
        } catch (const Error&) {
            return {};
        }
    }

    /// The folder of the one recording that is not complete.
    static std::optional<fs::path> openBundle()
    {
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(videos(), ignored)) {
            if (exists(journalURL(entry.path()))) {
                return entry.path();
            }
        }
        return {};
    }

    /// Returns when the recording has begun.
    static Recorder record()
    {
        Recorder recorder{.process = start({"record"})};
        EXPECT_TRUE(eventually([&] {
            const auto bundle = openBundle();
            recorder.bundle = bundle.value_or("");
            recorder.epoch = bundle ? journal(*bundle).epoch.value_or(0) : 0;
            return recorder.epoch > 0;
        }));
        return recorder;
    }

    /// When it happened, on the host's clock.
    static double kill(const Recorder& recorder)
    {
        const double time = monotonicSeconds();
        ::kill(recorder.process, SIGKILL);
        EXPECT_TRUE(eventually([&] { return !ProcessGroup::isRunning(recorder.process); }));
        return time;
    }

    /// Changes the picture and moves the pointer, 60 times a second.
    void animate(ColourWindow& window, double until)
    {
        for (int i = 0; monotonicSeconds() < until; ++i) {
            window.setColour(i % 2 == 0 ? 0x2060A0 : 0xE0C040);
            m_user.move(20 + i % 500, 40);
            std::this_thread::sleep_for(std::chrono::milliseconds(16));
        }
    }

    static fs::path videos() { return stage().home().path() / "Videos" / "Zento"; }
};

std::size_t frameCount(const fs::path& movie)
{
    std::size_t count = 0;
    for (VideoDecoder decoder(movie); decoder.next();) {
        ++count;
    }
    return count;
}

TEST_F(KillTest, whatWasOnDiskIsInTheRecoveredBundle)
{
    ColourWindow window(display(), 40, 60, 200, 120);
    const Recorder recorder = record();
    m_user.move(90, 100);
    for (int i = 0; i < 3; ++i) {
        m_user.click(1);
        ASSERT_TRUE(eventually([&] {
            const auto events = journal(recorder.bundle).events;
            return std::ranges::count(events, EventKind::Click, &InputEvent::kind) == i + 1;
        }));
    }
    ASSERT_TRUE(eventually([&] { return frameCount(recorder.bundle / "screen.mov") >= 4; }));
    kill(recorder);
    ASSERT_TRUE(run({"recover", recorder.bundle}));

    const SessionBundle bundle = SessionBundle::load(recorder.bundle);
    EXPECT_FALSE(fs::exists(journalURL(recorder.bundle)));
    EXPECT_EQ(std::ranges::count(bundle.events, EventKind::Click, &InputEvent::kind), 3);
    EXPECT_GT(bundle.meta.duration, 0);
    EXPECT_GE(frameCount(bundle.screenMovieURL()), 4U);
    fs::remove_all(recorder.bundle);
}

/// Not part of the suite, as it takes minutes: --gtest_also_run_disabled_tests
/// --gtest_filter='*twentyKills*' prints what each kill cost.
TEST_F(KillTest, DISABLED_twentyKillsLoseASecondEach)
{
    test::Random random(20);
    ColourWindow window(display(), 40, 60, 300, 200);
    std::puts("killed after   picture lost   input lost   frames   film");
    for (int i = 0; i < 20; ++i) {
        const Recorder recorder = record();
        animate(window, recorder.epoch + random.uniform(0.3, 15));
        const double lived = kill(recorder) - recorder.epoch;
        ASSERT_TRUE(run({"recover", recorder.bundle}));
        const SessionBundle bundle = SessionBundle::load(recorder.bundle);
        const double lastInput = bundle.events.empty() ? 0 : bundle.events.back().t;
        const fs::path plan = recorder.bundle / "plan.json";
        EXPECT_TRUE(run({"plan", recorder.bundle, "--output", plan}));
        EXPECT_TRUE(fs::exists(plan));
        const pid_t rendering = start({"render", recorder.bundle});
        while (ProcessGroup::isRunning(rendering)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        const std::size_t filmFrames = frameCount(bundle.filmURL());
        std::printf(
            "%10.2f s %12.2f s %10.2f s %8zu %6zu\n",
            lived,
            lived - bundle.meta.duration,
            lived - lastInput,
            frameCount(bundle.screenMovieURL()),
            filmFrames);
        std::fflush(stdout);
        EXPECT_LE(lived - bundle.meta.duration, 1);
        EXPECT_LE(lived - lastInput, 1);
        EXPECT_GT(filmFrames, 0U);
        fs::remove_all(recorder.bundle);
        fs::remove(bundle.filmURL());
    }
}

} // namespace
} // namespace zento
