#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Random.h"
#include "TestSupport/RandomSession.h"
#include "TestSupport/SamePixels.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/FrameSequence.h"
#include "ZentoRender/PreviewFrames.h"
#include "ZentoRender/PreviewRenderer.h"
#include "ZentoRender/ProxyStore.h"
#include "ZentoRender/SourceReader.h"
#include "ZentoRender/WebcamSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zento {
namespace {

constexpr VideoSize kMaster = {160, 90};
constexpr double kRecorded = 3; // seconds of movie; what lies beyond shows the last picture

std::shared_ptr<const PreviewFilm> filmOf(EditPlan plan, std::vector<InputEvent> events = {})
{
    auto curve = std::make_shared<const RemapCurve>(plan.timeRemap);
    return std::make_shared<const PreviewFilm>(PreviewFilm{
        .plan = std::make_shared<const EditPlan>(std::move(plan)),
        .curve = std::move(curve),
        .events = std::make_shared<const std::vector<InputEvent>>(std::move(events)),
        .master = kMaster});
}

/// A recording with a webcam, both numbered.
class PreviewTest : public testing::Test {
protected:
    PreviewTest()
    {
        test::writeNumberedRecording(
            m_folder / "screen.mov",
            kMaster,
            test::countedFrames(0, static_cast<int>(kRecorded * 60), 60));
        test::writeNumberedRecording(
            m_folder / "webcam.mov", {64, 64}, test::countedFrames(500, 30, 20));
    }

    /// A plan as the planner makes it of a random log, small enough to draw all its frames.
    static std::shared_ptr<const PreviewFilm> randomFilm(std::uint64_t seed)
    {
        const test::RandomSession session(seed);
        EditPlanner::PlanInput input = session.input;
        input.output = {.width = 128, .height = 72, .fps = 60};
        input.style.motionBlur = true;
        input.style.cursorAutoHide = seed % 2 == 0;
        input.webcam = WebcamPlan{.file = "webcam.mov", .offset = 0.3};
        EditPlan plan = EditPlanner::plan(input);
        for (CameraKeyframe& keyframe : plan.camera) // from the log's desktop to our small one
            keyframe.center = {keyframe.center.x / 12, keyframe.center.y / 12};
        for (CursorSample& sample : plan.cursor)
            sample.pos = {sample.pos.x / 12, sample.pos.y / 12};
        return filmOf(std::move(plan), session.events);
    }

    /// The frames of an export, as its stages make them one after the other.
    std::map<int, std::shared_ptr<const Picture>>
    exported(const PreviewFilm& film, const std::vector<int>& wanted) const
    {
        const EditPlan& plan = *film.plan;
        SourceReader reader(m_folder / "screen.mov");
        WebcamSource webcam(plan.webcam, m_folder.path());
        FrameCompositor compositor(plan.output, plan.style, kMaster);
        FrameSequence sequence(plan, *film.events, *film.curve, kMaster, 1 / plan.output.fps);
        std::map<int, std::shared_ptr<const Picture>> pictures;
        for (int i = 0; i <= std::ranges::max(wanted); ++i) {
            const double tOut = 1 / plan.output.fps * i;
            const double sourceTime = film.curve->sourceTime(tOut);
            const FrameLayers layers = sequence.next(
                {.tOut = tOut,
                 .sourceTime = sourceTime,
                 .frame = *reader.frame(sourceTime),
                 .webcam = webcam.frame(sourceTime)});
            if (std::ranges::find(wanted, i) != wanted.end())
                pictures[i] = compositor.compose(layers);
        }
        return pictures;
    }

    PreviewSource master() const { return {m_folder / "screen.mov", m_folder.path()}; }

    test::TemporaryFolder m_folder;
};

TEST_F(PreviewTest, IsTheExportsFrameAtAnyTimeInAnyOrder)
{
    PreviewFrames preview; // one for all plans, as a session of edits has it
    int compared = 0;
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        const auto film = randomFilm(seed);
        const int frames = static_cast<int>(film->curve->outputDuration() * 60);
        if (frames < 2)
            continue;
        test::Random random(seed);
        std::vector<int> wanted = {0, frames - 1};
        for (int i = 0; i < 24; ++i)
            wanted.push_back(static_cast<int>(random.below(static_cast<std::size_t>(frames))));
        wanted.push_back(std::min(wanted.back() + 1, frames - 1)); // as playing goes
        const auto expected = exported(*film, wanted);
        for (const int i : wanted) {
            const auto picture = preview.frame(film, master(), 1.0 / 60 * i);
            ASSERT_TRUE(test::samePixels(*picture, *expected.at(i))) << "frame " << i;
            ++compared;
        }
    }
    EXPECT_GT(compared, 150);
}

TEST_F(PreviewTest, AFrameBetweenTwoStepsHasTheCameraOfTheOneBefore)
{
    EditPlan plan;
    plan.output = {.width = 128, .height = 72, .fps = 30};
    plan.timeRemap = {{0, 200, 1}};
    plan.camera = {{0, {80, 45}, 1}, {0.1, {40, 20}, 2}, {150, {100, 60}, 1.4}};
    const auto film = filmOf(plan);
    PreviewFrames preview;
    const auto at = [&](double t) { return preview.frame(film, master(), t); };
    EXPECT_TRUE(test::samePixels(*at(150 + 8.2 / 60), *at(150 + 8.001 / 60)));
    EXPECT_FALSE(test::samePixels(*at(150 + 8.2 / 60), *at(150 + 9.2 / 60)));
    EXPECT_TRUE(test::samePixels(*at(1e9), *at(film->curve->outputDuration()))); // clamped
    EXPECT_TRUE(test::samePixels(*at(-4), *at(0)));
}

TEST_F(PreviewTest, ReadsFromTheProxyAndSwitchesBetweenSources)
{
    ProxyStore store;
    const PreviewSource proxy = {store.ensure(m_folder.path()), m_folder.path()};
    EditPlan plan;
    plan.output = {.width = 160, .height = 90, .fps = 60};
    plan.style.padding = 0;
    plan.style.cornerRadius = 0;
    plan.timeRemap = {{0, kRecorded, 1}};
    const auto film = filmOf(plan);
    PreviewFrames preview;
    for (const double t : {1.0, 2.5, 0.1})
        for (const PreviewSource& source : {proxy, master()}) {
            const auto picture = preview.frame(film, source, t);
            EXPECT_EQ(test::numberOf(picture->yuv()), std::lround(t * 60)) << t;
        }
    EXPECT_THROW(preview.frame(film, {m_folder / "gone.mp4", ""}, 1), Error);
    EXPECT_TRUE(preview.frame(film, proxy, 1));
    std::filesystem::remove(m_folder / "webcam.mov"); // and the bundle under an open session
    std::filesystem::remove(m_folder / "screen.mov");
    EXPECT_TRUE(preview.frame(film, proxy, 2));
}

/// What the renderer delivered, and a way to hold it up.
class Deliveries {
public:
    void operator()(PreviewFrame frame)
    {
        std::unique_lock lock(m_mutex);
        m_frames.push_back(std::move(frame));
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return !m_isHeld; });
    }

    void hold(bool isHeld)
    {
        const std::lock_guard lock(m_mutex);
        m_isHeld = isHeld;
        m_changed.notify_all();
    }

    std::vector<std::uint64_t> waitFor(std::uint64_t last)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return !m_frames.empty() && m_frames.back().number == last; });
        std::vector<std::uint64_t> numbers;
        for (const PreviewFrame& frame : m_frames)
            numbers.push_back(frame.number);
        return numbers;
    }

    std::vector<PreviewFrame> m_frames;

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isHeld = false;
};

TEST_F(PreviewTest, TheRendererAnswersTheNewestRequestAndNoneThatWasDropped)
{
    const auto film = randomFilm(3);
    Deliveries deliveries;
    PreviewRenderer renderer([&](PreviewFrame frame) { deliveries(std::move(frame)); });
    const auto ask = [&](std::uint64_t number) {
        renderer.request(
            {.number = number,
             .film = film,
             .source = number == 40 ? PreviewSource{m_folder / "gone.mov", ""} : master(),
             .tOut = static_cast<double>(number) / 60});
    };
    deliveries.hold(true);
    ask(1);
    deliveries.waitFor(1);
    for (std::uint64_t number = 2; number <= 11; ++number) // while one is on its way
        ask(number);
    deliveries.hold(false);
    EXPECT_THAT(deliveries.waitFor(11), testing::ElementsAre(1, 11));

    deliveries.hold(true);
    ask(20);
    deliveries.waitFor(20);
    ask(21);
    renderer.drop();
    ask(22);
    deliveries.hold(false);
    EXPECT_THAT(deliveries.waitFor(22), testing::ElementsAre(1, 11, 20, 22));

    ask(40);
    deliveries.waitFor(40);
    EXPECT_FALSE(deliveries.m_frames.back().picture);
    EXPECT_THAT(deliveries.m_frames.back().failure, testing::HasSubstr("gone.mov"));
    ask(41);
    deliveries.waitFor(41);
    EXPECT_TRUE(deliveries.m_frames.back().picture);
}

} // namespace
} // namespace zento
