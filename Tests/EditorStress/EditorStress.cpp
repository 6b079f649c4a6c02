// A hand that never rests: random edits, undos, scrubs and changes of recording, over the editor's
// real threads. Now and then it stops and looks whether what is saved is what is shown, and whether
// memory has grown.
//
//     editor_stress 400        so many rounds
//     editor_stress 60m 7      so many minutes, of the seed 7

#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Random.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Model/Editor.h"
#include "Zento/Model/FrameComposer.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/AacWriter.h"
#include "ZentoRender/ProxyStore.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QTimer>

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// The sanitizer's own count, where there is one.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace zento::test {
namespace {

using Steady = std::chrono::steady_clock;

constexpr double kSeconds = 20; // of a recording
constexpr int kRecordings = 3;

double allocatedMegabytes()
{
    const std::size_t bytes = __sanitizer_get_current_allocated_bytes != nullptr
                                  ? __sanitizer_get_current_allocated_bytes()
                                  : mallinfo2().uordblks;
    return static_cast<double>(bytes) / (1 << 20);
}

void turnLoop(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

void waitFor(const std::function<bool()>& condition, const char* what)
{
    const auto end = Steady::now() + std::chrono::minutes(2);
    while (!condition()) {
        if (Steady::now() > end)
            throw Error(ErrorCode::kReadingFailed, std::string(what) + " does not come");
        turnLoop(std::chrono::milliseconds(10));
    }
}

std::filesystem::path makeRecording(const std::filesystem::path& folder, int number)
{
    SessionBundle bundle;
    bundle.url = folder / (std::to_string(number) + ".zento");
    bundle.meta = {
        .pixelWidth = 640,
        .pixelHeight = 360,
        .scaleFactor = 1,
        .nominalFPS = 10,
        .duration = kSeconds};
    for (double t = 1 + number; t < kSeconds; t += 3)
        bundle.events.push_back({.t = t, .kind = EventKind::Click, .pos = {20 * t, 15 * t}});
    bundle.writeMetadata();
    writeFile(bundle.transcriptURL(), encodeTranscript({{2, 3, "one"}, {8, 9, "two"}}));
    writeNumberedRecording(
        bundle.url / "screen.mov",
        {640, 360},
        countedFrames(0, static_cast<int>(kSeconds) * 10, 10));
    const auto sound = tone(220 + 100 * number, 44100, 44100 * 12);
    AacWriter writer(bundle.musicURL(), {.sampleRate = 44100, .bitRate = 96000});
    writer.append(sound, sound);
    writer.finish();
    return bundle.url;
}

class Stress {
public:
    explicit Stress(std::uint64_t seed)
        : m_random(seed)
        , m_settings(m_folder / "settings.json", m_files)
        , m_editor(m_clock, m_settings, services())
    {
        for (int i = 0; i < kRecordings; ++i)
            m_recordings.push_back(makeRecording(m_folder.path(), i));
        m_editor.timeline()->setWidth(700);
        m_editor.musicTrack()->setWidth(260);
        open(0);
    }

    void round()
    {
        constexpr int kActs = 16;
        const int act = static_cast<int>(m_random.uniform(0, kActs));
        TimelineModel& line = *m_editor.timeline();
        const double x = m_random.uniform(0, 700);
        switch (act) {
        case 0:
            line.addZoomAt(x);
            break;
        case 1:
            line.nudgeZoom(anyZoom(), m_random.uniform(-2, 2));
            break;
        case 2:
            line.stretchZoom(anyZoom(), m_random.uniform(-2, 2));
            break;
        case 3:
            line.toggleZoom(anyZoom());
            break;
        case 4:
            line.deleteZoom(anyZoom());
            break;
        case 5:
            line.restoreDeletedZooms();
            break;
        case 6:
            line.pressVideo(x);
            line.dragVideo(m_random.uniform(0, 700));
            line.releaseVideo();
            break;
        case 7:
            line.resetTrim();
            break;
        case 8:
            line.setWord(m_random.uniform(0, 1) < 0.5 ? 0 : 1, QString::number(x));
            break;
        case 9:
            m_editor.musicTrack()->press(m_random.uniform(0, 260));
            m_editor.musicTrack()->drag(m_random.uniform(0, 260));
            m_editor.musicTrack()->release();
            break;
        case 10:
            m_settings.setProperty("motionBlur", m_random.uniform(0, 1) < 0.5);
            m_settings.insert(QStringLiteral("padding"), m_random.uniform(0, 0.2));
            break;
        case 11:
        case 12:
            m_editor.session()->undo();
            break;
        case 13:
            m_editor.session()->redo();
            break;
        case 14:
            line.beginZoomDrag(x);
            line.dragZoom(m_random.uniform(0, 700));
            line.endZoomDrag();
            break;
        default:
            line.seekTo(x);
            break;
        }
        turnLoop(std::chrono::milliseconds(m_random.uniform(0, 1) < 0.1 ? 120 : 5));
    }

    /// Twenty in a row, as when somebody runs through the library with the arrow keys.
    void runThroughLibrary()
    {
        for (int i = 0; i < 20; ++i) {
            m_editor.session()->open(m_recordings[anyRecording()].c_str());
            turnLoop(std::chrono::milliseconds(static_cast<int>(m_random.uniform(0, 100))));
        }
        open(anyRecording());
    }

    /// What is saved is what is shown, also once it is opened anew.
    void compare()
    {
        EditSession& session = *m_editor.session();
        bool isSaved = false;
        session.flush([&] { isSaved = true; });
        waitFor([&] { return isSaved; }, "the end of the saving");
        const SavedOverrides shown = session.edits();
        const auto words = session.transcript();
        const SessionBundle bundle = SessionBundle::load(session.bundlePath());
        require(written(shown) == loadSavedOverrides(bundle), "the saved edits are others");
        require(loadAnalyses(bundle).transcript == words, "the saved captions are others");
        const std::size_t recording = m_open;
        session.open({});
        open(recording);
        require(written(shown) == session.edits(), "the edits are others when opened anew");
        require(session.transcript() == words, "the captions are others when opened anew");
    }

private:
    EditorServices services()
    {
        return {
            .edits = m_edits,
            .analyses = m_analyses,
            .speech = m_speech,
            .proxies = m_proxies,
            .pictures = m_pictures,
            .sounds = m_sounds,
            .makeProxy =
                [this](const auto& bundle, const auto& progress, const auto& stop) {
                    return m_store.ensure(bundle, progress, stop);
                },
            .makeComposer = threadedComposer,
            .desktopImage = [] { return std::optional<std::string>(); }};
    }

    /// As a file gives them back: it leaves out what is next to nothing.
    static SavedOverrides written(const SavedOverrides& edits)
    {
        return decodeSavedOverrides(encodeSavedOverrides(edits));
    }

    static void require(bool holds, const char* otherwise)
    {
        if (!holds)
            throw Error(ErrorCode::kReadingFailed, otherwise);
    }

    std::size_t anyRecording()
    {
        return static_cast<std::size_t>(m_random.uniform(0, kRecordings - 0.001));
    }

    double anyZoom()
    {
        const QVariantList zooms = m_editor.timeline()->zooms();
        if (zooms.isEmpty())
            return 1;
        const auto at =
            static_cast<qsizetype>(m_random.uniform(0, 1) * 0.999 * double(zooms.size()));
        return zooms[at].toMap()[QStringLiteral("id")].toDouble();
    }

    void open(std::size_t recording)
    {
        m_open = recording;
        m_editor.session()->open(m_recordings[recording].c_str());
        waitFor([this] { return m_editor.session()->film() != nullptr; }, "the film's plan");
        waitFor([this] { return m_editor.preview()->hasImage(); }, "the picture");
        require(
            m_editor.session()->bundlePath() == m_recordings[recording],
            "another recording is open than the last one asked for");
    }

    Random m_random;
    TemporaryFolder m_folder;
    EventLoopClock m_clock;
    ProxyStore m_store;
    ThreadWorker m_files{"files"};
    ThreadWorker m_edits{"edits"};
    ThreadWorker m_analyses{"analyses"};
    ThreadWorker m_speech{"speech"};
    ThreadWorker m_proxies{"proxies"};
    ThreadWorker m_pictures{"pictures"};
    ThreadWorker m_sounds{"sounds"};
    SettingsModel m_settings;
    Editor m_editor;
    std::vector<std::filesystem::path> m_recordings;
    std::size_t m_open = 0;
};

/// Rounds until `goesOn` says no. Throws for what must not be.
void run(std::uint64_t seed, const std::function<bool(int rounds)>& goesOn)
{
    constexpr int kLookEvery = 100; // rounds
    constexpr int kWarmUp = 300;
    constexpr double kAllowed = 48; // MB: caches, and undo steps of thousands of edits
    Stress stress(seed);
    double atFirst = 0;
    for (int rounds = 1; goesOn(rounds); ++rounds) {
        stress.round();
        if (rounds % (3 * kLookEvery) == 0)
            stress.runThroughLibrary();
        if (rounds % kLookEvery != 0)
            continue;
        stress.compare();
        const double now = allocatedMegabytes();
        if (rounds % (10 * kLookEvery) == 0 || rounds == kWarmUp)
            std::printf("%7d rounds: %.1f MB\n", rounds, now);
        if (rounds <= kWarmUp)
            atFirst = std::max(atFirst, now);
        else if (now > atFirst + kAllowed)
            throw Error(
                ErrorCode::kReadingFailed,
                "memory has grown from " + std::to_string(atFirst) + " to " + std::to_string(now)
                    + " MB in " + std::to_string(rounds) + " rounds");
    }
}

} // namespace
} // namespace zento::test

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const std::string length = argc > 1 ? argv[1] : "400";
    const auto seed = static_cast<std::uint64_t>(argc > 2 ? std::atoll(argv[2]) : 1);
    try {
        const int count = std::stoi(length);
        const auto end = zento::test::Steady::now() + std::chrono::minutes(count);
        const bool isTimed = length.ends_with('m');
        zento::test::run(seed, [&](int rounds) {
            return isTimed ? zento::test::Steady::now() < end : rounds <= count;
        });
        std::puts("what is saved is what is shown, and memory has not grown");
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "editor_stress: %s\n", error.what());
        return 1;
    }
}
