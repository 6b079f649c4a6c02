#include "Visit.h"

#include "Heartbeat.h"
#include "Zento/Desktop/ApplicationHost.h"
#include "Zento/Presentation/Windows.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <vector>

namespace zento::bench {

namespace {

using Phase = RecordingFlow::Phase;

/// The application as `main` opens it.
struct Application {
    Application(int& argc, char** argv)
        : qt(argc, argv)
    {
        QGuiApplication::setApplicationName(QStringLiteral("Zento"));
        if (!host.claim()) {
            std::exit(1); // NOLINT(concurrency-mt-unsafe): another one on this stage is a fault
        }
        windows.emplace(&host.model());
    }

    /// Calls `shown` once, when the window has drawn the complete library.
    void onShown(std::function<void()> shown)
    {
        QObject::connect(
            windows->mainWindow(),
            &QQuickWindow::frameSwapped,
            &host,
            [this, shown = std::move(shown)] {
                const RecordingLibrary& library = *host.model().library();
                if (!library.isLoading() && library.totalCount() > 0 && !isShown) {
                    isShown = true;
                    shown();
                }
            });
    }

    QGuiApplication qt;
    ApplicationHost host;
    std::optional<Windows> windows;
    bool isShown = false;
};

/// Acts one after the other, each beginning when the one before it has ended.
class Course : public QObject {
public:
    struct Act {
        const char* name;
        std::function<void()> begin;
        std::function<bool()> isOver;
    };

    explicit Course(std::vector<Act> acts)
        : m_acts(std::move(acts))
    {
        m_timer.setInterval(5);
        connect(&m_timer, &QTimer::timeout, this, &Course::look);
    }

    void begin()
    {
        m_heartbeat.takeLongest();
        beginAct();
        m_timer.start();
    }

private:
    void beginAct()
    {
        m_begun = std::chrono::steady_clock::now();
        m_acts[m_index].begin();
    }

    void look()
    {
        if (!m_acts[m_index].isOver()) {
            return;
        }
        const Heartbeat::Pause pause = m_heartbeat.takeLongest();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - m_begun;
        std::printf(
            "%s %.1f %.1f %.1f %.1f\n",
            m_acts[m_index].name,
            took.count(),
            pause.milliseconds,
            pause.work,
            pause.delayed);
        std::fflush(stdout);
        if (++m_index == m_acts.size()) {
            QCoreApplication::quit();
            m_timer.stop();
        } else {
            beginAct();
        }
    }

    std::vector<Act> m_acts;
    std::size_t m_index = 0;
    std::chrono::steady_clock::time_point m_begun;
    QTimer m_timer;
    Heartbeat m_heartbeat;
};

} // namespace

int visitStart(int argc, char** argv)
{
    Application application(argc, argv);
    application.onShown([] {
        const char* const begun = std::getenv("ZENTO_BENCH_BEGUN"); // NOLINT(concurrency-mt-unsafe)
        const std::chrono::nanoseconds then(begun == nullptr ? 0 : std::atoll(begun)); // NOLINT
        const std::chrono::duration<double> took =
            std::chrono::steady_clock::now().time_since_epoch() - then;
        std::printf("start %.3f\n", took.count());
        std::fflush(stdout);
        QCoreApplication::quit();
    });
    application.host.start();
    return QGuiApplication::exec();
}

int visitPauses(int argc, char** argv)
{
    constexpr std::chrono::seconds kRecorded{5};
    Application application(argc, argv);
    AppModel& model = application.host.model();
    bool isListed = false;
    bool isExported = false;
    std::chrono::steady_clock::time_point begun;
    const auto isIdle = [&] { return model.recording()->phase() == Phase::Idle; };
    const auto fail = [&] {
        if (const QString message = model.messages()->errorMessage(); !message.isEmpty()) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(message));
            std::exit(1); // NOLINT(concurrency-mt-unsafe): without an export nothing was measured
        }
    };
    Course course(
        {{"listing",
          [&] { model.library()->refresh([&] { isListed = true; }); },
          [&] { return isListed; }},
         {"recording",
          [&] {
              begun = std::chrono::steady_clock::now();
              model.recording()->recordDisplay();
          },
          [&] { return std::chrono::steady_clock::now() - begun > kRecorded; }},
         {"stopping", [&] { model.recording()->stopRecording(); }, isIdle},
         {"exporting",
          [&] {
              QObject::connect(model.messages(), &Messages::errorMessageChanged, fail);
              model.filmExport()->start();
          },
          [&] { return isExported; }}});
    QObject::connect(
        model.filmExport(), &FilmExport::filmWritten, &course, [&] { isExported = true; });
    // The window's first pictures are the start's.
    application.onShown([&] { QTimer::singleShot(1000, &course, &Course::begin); });
    application.host.start();
    return QGuiApplication::exec();
}

int visitListening(int argc, char** argv)
{
    constexpr std::chrono::milliseconds kScrub{100};
    constexpr double kStep = 7; // seconds
    Application application(argc, argv);
    AppModel& model = application.host.model();
    EditSession& session = *model.editor()->session();
    LivePreview& preview = *model.editor()->preview();
    const QString recording = qEnvironmentVariable("ZENTO_BENCH_RECORDING");
    QTimer hand;
    hand.setInterval(kScrub);
    QObject::connect(&hand, &QTimer::timeout, [&preview] {
        preview.seek(std::fmod(preview.playheadTimeline() + kStep, preview.duration()));
    });
    Course course(
        {{"opening",
          [&] { model.openFromSearch(recording); },
          [&] { return session.film() != nullptr && preview.duration() > 0; }},
         {"listening", [&] { hand.start(); }, [&] { return !session.transcript().empty(); }},
         {"afterwards",
          [] {},
          [end = std::chrono::steady_clock::time_point()]() mutable {
              const auto now = std::chrono::steady_clock::now();
              if (end == std::chrono::steady_clock::time_point()) {
                  end = now + std::chrono::seconds(2); // the new plan lands
              }
              return now > end;
          }}});
    application.onShown([&] { QTimer::singleShot(1000, &course, &Course::begin); });
    application.host.start();
    return QGuiApplication::exec();
}

} // namespace zento::bench
