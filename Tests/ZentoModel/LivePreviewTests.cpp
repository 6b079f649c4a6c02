#include "EditorFixture.h"
#include "Zento/Model/LivePreview.h"
#include "Zento/Timeline/ZoomEditing.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zento {
namespace {

using namespace std::chrono_literals;
using State = LivePreview::State;

/// Answers when the test says so.
class FakeComposer final : public FrameComposer {
public:
    explicit FakeComposer(std::function<void(LiveFrame)> deliver)
        : m_deliver(std::move(deliver))
    {
    }

    void request(PreviewRequest request) override { requests.push_back(std::move(request)); }
    void drop() override { ++drops; }

    void answer(const PreviewRequest& request, const QString& failure = {}) const
    {
        LiveFrame frame = {.number = request.number, .tOut = request.tOut, .failure = failure};
        if (failure.isEmpty())
            frame.image = QImage(static_cast<int>(request.number), 1, QImage::Format_RGB32);
        m_deliver(std::move(frame));
    }

    std::vector<PreviewRequest> requests;
    int drops = 0;

private:
    std::function<void(LiveFrame)> m_deliver;
};

class LivePreviewTest : public test::EditorTest {
protected:
    LivePreviewTest()
        : m_preview(std::in_place, previewPorts())
    {
    }

    LivePreview::Ports previewPorts()
    {
        return {
            .clock = m_clock,
            .proxies = m_proxies,
            .session = *m_session,
            .makeProxy =
                [this](const auto& folder, const auto& onProgress, const std::stop_token& stop) {
                    ++m_proxiesMade;
                    onProgress(0.5);
                    if (!m_proxyFailure.empty())
                        throw Error(1, m_proxyFailure);
                    if (stop.stop_requested())
                        throw Error(ErrorCode::kCancelled, "cancelled");
                    return folder / "proxy.mp4";
                },
            .makeComposer =
                [this](auto deliver) {
                    auto composer = std::make_unique<FakeComposer>(std::move(deliver));
                    m_composer = composer.get();
                    return composer;
                }};
    }

    /// Opens a recording of a minute whose film is as long as it is.
    void openWhole()
    {
        AppSettings settings = m_settings.current();
        settings.cutIdle = false;
        m_settings.replace(settings);
        open(bundle("a.zento"));
        m_duration = m_preview->duration();
        ASSERT_GT(m_duration, 50);
    }

    double lastAsked() const { return m_composer->requests.back().tOut; }

    test::FakeWorker m_proxies;
    int m_proxiesMade = 0;
    std::string m_proxyFailure;
    FakeComposer* m_composer = nullptr;
    double m_duration = 0;
    std::optional<LivePreview> m_preview;
};

TEST_F(LivePreviewTest, ShowsTheRecordingUntilItsProxyIsMade)
{
    EXPECT_EQ(m_preview->state(), State::Empty);
    m_proxies.isHeld = true;
    const auto path = bundle("a.zento");
    open(path);
    EXPECT_EQ(m_preview->state(), State::PreparingProxy);
    EXPECT_EQ(m_composer->requests.back().source.screen, path / "screen.mov");
    m_composer->answer(m_composer->requests.back());
    EXPECT_TRUE(m_preview->hasImage());
    m_proxies.isHeld = false;
    m_proxies.release();
    EXPECT_EQ(m_preview->state(), State::Ready);
    EXPECT_EQ(m_composer->requests.back().source.screen, path / "proxy.mp4");
    EXPECT_EQ(m_composer->requests.back().film->plan->output.height, 720);
    m_composer->answer(m_composer->requests.back(), "unreadable"); // the picture stays
    EXPECT_TRUE(m_preview->hasImage());
}

TEST_F(LivePreviewTest, AFailureIsToldAndTheNextOpeningTriesAgain)
{
    m_proxyFailure = "The disk is full.";
    open(bundle("a.zento"));
    EXPECT_EQ(m_preview->state(), State::Failed);
    EXPECT_EQ(m_preview->failure(), "The disk is full.");
    const auto asked = m_composer->requests.size();
    m_preview->play();
    m_preview->seek(4);
    EXPECT_FALSE(m_preview->isPlaying());
    EXPECT_EQ(m_composer->requests.size(), asked);
    m_proxyFailure.clear();
    open(m_folder / "a.zento");
    EXPECT_EQ(m_preview->state(), State::Ready);
}

TEST_F(LivePreviewTest, NothingOfARecordingThatWasLeftIsShown)
{
    m_proxies.isHeld = true;
    open(bundle("a.zento"));
    const PreviewRequest old = m_composer->requests.back();
    for (int i = 0; i < 20; ++i)
        open(bundle(i % 2 == 0 ? "b.zento" : "c.zento"));
    m_composer->answer(old);
    EXPECT_FALSE(m_preview->hasImage());
    m_proxies.isHeld = false;
    m_proxies.release();
    EXPECT_EQ(m_proxiesMade, 1); // those that nobody waits for are not begun
    EXPECT_EQ(m_composer->requests.back().source.bundle.filename(), "c.zento");
    EXPECT_EQ(m_preview->state(), State::Ready);
    open({});
    EXPECT_EQ(m_preview->state(), State::Empty);
    EXPECT_EQ(m_preview->duration(), 0);
    EXPECT_EQ(m_composer->drops, 23);
}

TEST_F(LivePreviewTest, AScrubOverAWebcamIsADraftUntilTheHandRests)
{
    const auto path = bundle("cam.zento");
    writeFile(path / "webcam.mov", "");
    open(path);
    m_preview->seek(5);
    const PreviewRequest first = m_composer->requests.back();
    m_preview->seek(6);
    const PreviewRequest second = m_composer->requests.back();
    EXPECT_EQ(second.detail, PreviewDetail::Draft);
    m_composer->answer(first); // the hand has moved on
    EXPECT_EQ(m_composer->requests.back().number, second.number);
    m_composer->answer(second);
    EXPECT_GT(m_composer->requests.back().number, second.number);
    EXPECT_EQ(m_composer->requests.back().detail, PreviewDetail::Exact);
    EXPECT_EQ(m_composer->requests.back().tOut, second.tOut);
    const auto asked = m_composer->requests.size();
    m_composer->answer(m_composer->requests.back());
    EXPECT_EQ(m_composer->requests.size(), asked);
}

TEST_F(LivePreviewTest, PlaysByTicksToTheEndAndStartsOverFromThere)
{
    openWhole();
    m_preview->skip(m_duration - 1);
    m_preview->play();
    m_clock.advance(330ms); // ten ticks
    EXPECT_NEAR(m_preview->tOut(), m_duration - 1 + 10.0 / 30, 1e-6);
    m_preview->skip(-0.1); // while it plays
    EXPECT_TRUE(m_preview->isPlaying());
    m_clock.advance(3s);
    EXPECT_FALSE(m_preview->isPlaying());
    EXPECT_EQ(m_preview->tOut(), m_duration);
    EXPECT_EQ(lastAsked(), m_duration);
    m_preview->skip(-0.04);
    m_preview->play();
    EXPECT_EQ(m_preview->tOut(), 0);
    m_preview->togglePlaying();
    m_clock.advance(1s);
    EXPECT_EQ(m_preview->tOut(), 0);
}

TEST_F(LivePreviewTest, FollowsWhatKeepsTheTime)
{
    openWhole();
    std::optional<double> heard;
    m_preview->follow([&] { return heard; });
    m_preview->play();
    m_clock.advance(33ms);
    EXPECT_NEAR(m_preview->tOut(), 1.0 / 30, 1e-9); // nothing to follow yet
    heard = 7.25;
    m_clock.advance(33ms);
    EXPECT_EQ(m_preview->tOut(), 7.25);
    heard = m_duration + 1;
    m_clock.advance(33ms);
    EXPECT_FALSE(m_preview->isPlaying());
}

TEST_F(LivePreviewTest, StepsFromFrameToFrameAndTellsWhere)
{
    openWhole();
    const double fps = m_settings.current().fps;
    m_preview->play();
    m_preview->step(3);
    EXPECT_FALSE(m_preview->isPlaying());
    EXPECT_NEAR(m_preview->tOut(), 3 / fps, 1e-9);
    EXPECT_EQ(m_preview->scrubHint(), "0:00.1 · frame 3");
    m_clock.advance(800ms);
    m_preview->step(-9);
    EXPECT_EQ(m_preview->tOut(), 0);
    m_clock.advance(800ms); // the hint of the second step
    EXPECT_EQ(m_preview->scrubHint(), "0:00.0 · frame 0");
    m_clock.advance(100ms);
    EXPECT_EQ(m_preview->scrubHint(), "");
    m_preview->seekToEnd();
    m_preview->step(1);
    const double last = m_preview->tOut();
    EXPECT_NEAR(last, std::floor(m_duration * fps) / fps, 1e-9);
    m_preview->step(1);
    EXPECT_EQ(m_preview->tOut(), last);
    EXPECT_FALSE(m_preview->scrubHint().isEmpty());
}

TEST_F(LivePreviewTest, TheTimelineKeepsWhatATrimRemoves)
{
    openWhole();
    SavedOverrides edits;
    edits.trimStart = 20;
    edits.trimEnd = 40;
    m_preview->seekToEnd();
    m_session->apply({edits, EditName::kTrim});
    settle();
    const double trimmed = m_preview->duration();
    EXPECT_LT(trimmed, 21);
    EXPECT_NEAR(m_preview->tOut(), trimmed - 0.01, 1e-9); // it was beyond the new end
    const double start = m_session->film()->timelineCurve->outputTime(20);
    struct Case {
        const char* name;
        double timeline;
        double tOut;
    };
    const Case cases[] = {
        {"before the kept stretch", start - 5, 0},
        {"within", start + 3, 3},
        {"behind it", start + 30, trimmed}};
    for (const Case& c : cases) {
        m_preview->seek(c.timeline);
        EXPECT_NEAR(m_preview->tOut(), c.tOut, 0.05) << c.name;
        EXPECT_EQ(lastAsked(), m_preview->tOut()) << c.name;
    }
    m_preview->seek(start + 3);
    EXPECT_NEAR(m_preview->playheadTimeline(), start + 3, 1e-6);
}

} // namespace
} // namespace zento
