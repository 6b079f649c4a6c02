// What a hand in the editor waits for: opening, scrubbing, playing, replanning, the proxy.
//
//     editor_bench           an hour made up here
//     editor_bench BUNDLE    a recording, of an hour for the limits to mean something

#include "HumanSession.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Random.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Model/Clock.h"
#include "Zento/Model/EditSession.h"
#include "Zento/Model/FrameComposer.h"
#include "Zento/Model/LivePreview.h"
#include "Zento/Model/SettingsModel.h"
#include "Zento/Model/Worker.h"
#include "Zento/Presentation/FilmView.h"
#include "Zento/Timeline/ZoomEditing.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/ProxyWriter.h"
#include "ZentoMedia/WebcamWriter.h"
#include "ZentoRender/ProxyStore.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zento {
namespace {

using Steady = std::chrono::steady_clock;

double milliseconds(Steady::time_point since)
{
    return std::chrono::duration<double, std::milli>(Steady::now() - since).count();
}

/// Runs the event loop until `isDone`, or for that long.
void waitFor(const std::function<bool()>& isDone, int seconds = 60)
{
    const auto start = Steady::now();
    QTimer ticking; // so that the loop wakes
    ticking.start(100);
    while (!isDone() && milliseconds(start) < seconds * 1000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

double percentile(std::vector<double> values, double share)
{
    std::ranges::sort(values);
    const auto last = static_cast<double>(values.size() - 1);
    return values.empty() ? 0 : values[static_cast<std::size_t>(share * last + 0.5)];
}

void tell(const char* what, double value, double limit, bool isAtMost = true)
{
    const bool passes = isAtMost ? value <= limit : value >= limit;
    std::printf(
        "  %-58s %9.2f   %s %8.2f   %s\n",
        what,
        value,
        isAtMost ? "at most " : "at least",
        limit,
        passes ? "pass" : "MISS");
}

void tell(const char* what, double value)
{
    std::printf("  %-58s %9.2f\n", what, value);
}

/// An hour of work on a display of that size, with a webcam and captions. Its proxy is written
/// directly: four pictures a second, all different.
std::filesystem::path makeHour(const std::filesystem::path& folder, VideoSize display)
{
    SessionBundle bundle = bench::humanSession(1);
    bundle.url = folder;
    bundle.meta.pixelWidth = display.width;
    bundle.meta.pixelHeight = display.height;
    bundle.writeMetadata();
    std::vector<TranscriptSegment> transcript;
    for (double t = 2; t < bundle.meta.duration - 5; t += 5)
        transcript.push_back({t, t + 4, "and this is what was said at that time"});
    writeFile(bundle.transcriptURL(), encodeTranscript(transcript));

    const VideoSize size = proxySize(display);
    std::vector<test::FilmPicture> pictures;
    for (unsigned i = 0; i < 8; ++i)
        pictures.push_back(test::noiseFilmPicture(i, size.width, size.height));
    ProxyWriter proxy(folder / "proxy.mp4", size.width, size.height);
    for (int i = 0; i < static_cast<int>(bundle.meta.duration) * 4; ++i) {
        const auto& picture =
            i % 16 == 0 ? pictures[static_cast<std::size_t>(i / 16 % 8)]
                        : (pictures[0] = test::numberedFilmPicture(i, size.width, size.height));
        proxy.append(
            {picture.planes.y, picture.planes.cb, picture.planes.cr}, picture.samples, i / 4.0);
    }
    proxy.finish();

    WebcamWriter webcam(bundle.webcamURL());
    std::vector<std::uint8_t> pixels(1280UL * 720 * 4, 90);
    for (int i = 0; i < 120 * 30; ++i) { // two minutes; the rest shows its last picture
        std::fill_n(pixels.begin() + (i % 700) * 1280L * 4, 1280L * 4 * 16, std::uint8_t(i));
        webcam.append(
            {.pixels = CameraPixels::Bgrx,
             .width = 1280,
             .height = 720,
             .planes = {{{pixels.data(), 1280 * 4}}}},
            i / 30.0);
    }
    webcam.finish();
    return folder;
}

/// The editor's parts over real threads, and a window that shows the film.
class Bench {
public:
    Bench(std::filesystem::path bundle, ProxyMaker makeProxy)
        : m_bundle(std::move(bundle))
        , m_settings(m_folder / "settings.json", m_files)
        , m_session(
              {.clock = m_clock,
               .edits = m_edits,
               .analyses = m_analyses,
               .speech = m_analyses,
               .settings = m_settings,
               .desktopImage = [] { return std::optional<std::string>(); }})
        , m_preview(
              {.clock = m_clock,
               .proxies = m_proxies,
               .session = m_session,
               .makeProxy = std::move(makeProxy),
               .makeComposer = threadedComposer})
    {
        AppSettings settings;
        settings.motionBlur = true;
        settings.cutIdle = false;
        m_settings.replace(settings);
        m_window.resize(1280, 720);
        m_view.setParentItem(m_window.contentItem());
        m_view.setSize({1280, 720});
        m_view.setPreview(&m_preview);
        QObject::connect(&m_view, &FilmView::shown, [this] { ++m_shown; });
        m_window.show();
    }

    double open()
    {
        m_session.open({});
        QCoreApplication::processEvents(); // what was on its way counts for before
        const int before = m_shown;
        const auto start = Steady::now();
        m_session.open(m_bundle.c_str());
        waitFor([&] { return m_shown > before; });
        const double time = milliseconds(start);
        waitFor([&] { return m_preview.state() == LivePreview::State::Ready; });
        if (!m_session.film())
            throw Error(ErrorCode::kReadingFailed, "the recording did not open in a minute");
        return time;
    }

    void scrub(double limit)
    {
        test::Random random(1);
        std::vector<double> times;
        const double length = m_session.film()->timelineDuration;
        double place = length / 2;
        for (int i = 0; i < 250; ++i) {
            // A hand that drags, and now and then jumps.
            place = i % 10 == 0 ? random.uniform(0, length)
                                : std::clamp(place + random.uniform(-20, 20), 0.0, length);
            const int before = m_shown;
            const auto start = Steady::now();
            m_preview.seek(place);
            waitFor([&] { return m_shown > before; });
            times.push_back(milliseconds(start));
        }
        tell("scrub, median ms", percentile(times, 0.5));
        tell("scrub, 95th percentile ms", percentile(times, 0.95), limit);
        tell("scrub, slowest ms", percentile(times, 1));
    }

    void play(double from)
    {
        m_preview.seek(from);
        waitFor([] { return false; }, 1);
        const int before = m_shown;
        const auto start = Steady::now();
        m_preview.play();
        waitFor([] { return false; }, 10);
        const int frames = m_shown - before;
        tell("play, frames a second", frames / milliseconds(start) * 1000, 29, false);
        m_preview.pause();
    }

    void replan()
    {
        std::vector<double> times;
        bool isPlanned = false;
        QObject::connect(&m_session, &EditSession::planned, [&] { isPlanned = true; });
        for (int i = 0; i < 40; ++i) {
            SavedOverrides edits = m_session.edits();
            edits.trimStart = 10.0 + i;
            isPlanned = false;
            const auto start = Steady::now();
            m_session.apply(
                i % 2 == 0 ? EditStep{edits, EditName::kTrim}
                           : addZoom(m_session.edits(), i * 40.0, 1.6));
            waitFor([&] { return isPlanned; });
            times.push_back(milliseconds(start));
        }
        tell("replan after an edit, median ms", percentile(times, 0.5));
        tell("replan after an edit, 95th percentile ms", percentile(times, 0.95), 300);
    }

    double recorded() const { return m_session.recorded(); }

private:
    test::TemporaryFolder m_folder;
    std::filesystem::path m_bundle;
    EventLoopClock m_clock;
    ThreadWorker m_files{"files"};
    ThreadWorker m_edits{"edits"};
    ThreadWorker m_analyses{"analyses"};
    ThreadWorker m_proxies{"proxies"};
    SettingsModel m_settings;
    EditSession m_session;
    LivePreview m_preview;
    QQuickWindow m_window;
    FilmView m_view;
    int m_shown = 0; // frames that reached the window
};

/// Ten seconds at 60 pictures a second, every one of them new.
void measureProxy()
{
    const test::TemporaryFolder folder;
    test::writeNumberedRecording(
        folder / "screen.mov", {1920, 1080}, test::countedFrames(0, 600, 60));
    ProxyStore store;
    const auto start = Steady::now();
    store.ensure(folder.path());
    tell("proxy, times real time, every picture new", 10'000 / milliseconds(start), 4, false);
    const auto again = Steady::now();
    store.ensure(folder.path());
    tell("proxy that is there, ms", milliseconds(again), 20);
}

void measure(const std::filesystem::path& bundle, const ProxyMaker& makeProxy, double scrubLimit)
{
    Bench bench(bundle, makeProxy);
    const double first = bench.open();
    tell("open, to the first frame, ms", first);
    tell("open again, ms", bench.open());
    std::printf("  a recording of %.0f s\n", bench.recorded());
    bench.scrub(scrubLimit);
    bench.play(bench.recorded() * 0.01);
    bench.replan();
}

void measureHour(VideoSize display, double scrubLimit)
{
    const test::TemporaryFolder folder;
    std::printf("an hour on a display of %d x %d\n", display.width, display.height);
    const auto givenProxy = [](const std::filesystem::path& bundle, const auto&, const auto&) {
        return bundle / "proxy.mp4";
    };
    measure(makeHour(folder.path(), display), givenProxy, scrubLimit);
}

} // namespace
} // namespace zento

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    try {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        const QGuiApplication application(argc, argv);
        if (argc > 1) {
            zento::ProxyStore store;
            const auto build = [&](const auto& bundle, const auto& progress, const auto& stop) {
                const auto start = zento::Steady::now();
                const auto proxy = store.ensure(bundle, progress, stop);
                std::printf("  the proxy took %.1f s\n", zento::milliseconds(start) / 1000);
                return proxy;
            };
            zento::measure(argv[1], build, 33);
            return 0;
        }
        zento::measureProxy();
        zento::measureHour({1920, 1080}, 33);
        zento::measureHour({2880, 1800}, 80);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "editor_bench: %s\n", error.what());
        return 1;
    }
}
