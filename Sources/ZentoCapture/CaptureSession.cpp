#include "ZentoCapture/CaptureSession.h"

#include "ZentoCapture/BundleCompletion.h"
#include "ZentoCapture/CaptureLayout.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <system_error>
#include <utility>
#include <variant>

namespace zento {

namespace {

constexpr double kNominalFPS = 60; // whatever rate arrives

/// How often the poll looks after a recorded window: 20 times a second.
constexpr int kTicksPerWindowRefresh = 6;

} // namespace

CaptureSession::CaptureSession(
    std::filesystem::path bundleURL,
    Desktop& desktop,
    ScreenWriterFactory makeWriter,
    SideRecorderFactories sideRecorders)
    : m_bundleURL(std::move(bundleURL))
    , m_desktop(desktop)
    , m_makeWriter(std::move(makeWriter))
    , m_log(InputLog::make(desktop.elementLookup()))
    , m_sideRecorders(m_bundleURL, std::move(sideRecorders))
{
}

CaptureSession::~CaptureSession() = default;

void CaptureSession::choose(const std::stop_token& stop)
{
    m_desktop.choose(target, stop);
    m_isChosen = true;
}

void CaptureSession::start(const std::stop_token& stop)
{
    startEventTap();
    const FrameRequest request = [&] {
        try {
            if (!m_isChosen) {
                choose(stop);
            }
            return prepare();
        } catch (...) {
            stopEventTap();
            throw;
        }
    }();
    startWriter();
    startJournal();
    if (recordSystemAudio) {
        m_sideRecorders.startSystemAudio();
    }
    startStream(request);
    startDevices();
    startCursorPolling();
}

void CaptureSession::stop()
{
    stopEventTap();
    if (m_stream) {
        m_stream->stop();
        m_stream.reset();
    }
    m_intake.setWriter(nullptr);
    const auto writer = std::exchange(m_writer, nullptr);
    auto journal = std::exchange(m_journal, nullptr); // a stop that fails leaves it complete
    const std::optional<double> epoch = m_intake.epoch();
    if (!epoch) {
        throw Error(ErrorCode::kNoFrames, "no frames captured");
    }
    writer->finish();
    SessionBundle bundle{
        .url = m_bundleURL, .meta = meta(*epoch), .events = m_log->finished(*epoch)};
    m_sideRecorders.stop(*epoch, bundle.meta);
    if (journal) {
        journal->finish();
    }
    complete(bundle);
    journal.reset();
    removeJournal(m_bundleURL);
}

void CaptureSession::startEventTap()
{
    m_input = m_desktop.inputSource();
    m_hasPointerOnly = m_input->reach() == InputSource::Reach::PointerOnly;
    m_input->start([log = m_log](const RawInput& input) { log->handle(input); });
}

void CaptureSession::stopEventTap() noexcept
{
    m_poll.reset();
    if (m_input) {
        m_input->stop();
        m_input.reset();
    }
}

/// Lays out the capture space; the log maps by it from here on.
FrameRequest CaptureSession::prepare()
{
    CaptureLayout layout = captureLayout(target, m_desktop, excludeWindowIDs);
    m_scale = layout.display.scale;
    appName = m_desktop.frontmostApplication();
    m_pixelWidth = layout.request.pixelWidth;
    m_pixelHeight = layout.request.pixelHeight;
    if (m_pixelWidth < 2 || m_pixelHeight < 2) {
        throw Error(
            ErrorCode::kMovieNotStarted, "what is to be recorded is smaller than two pixels");
    }
    m_log->setSpace({.originPoints = {layout.captured.x, layout.captured.y}, .scale = m_scale});
    m_window = layout.request.window;
    if (layout.window && layout.window->application) {
        appName = layout.window->application;
    }
    return std::move(layout.request);
}

void CaptureSession::startWriter()
{
    makeFolder(m_bundleURL);
    const auto path = m_bundleURL / "screen.mov";
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    m_writer = m_makeWriter(path, m_pixelWidth, m_pixelHeight);
    m_intake.setWriter(m_writer.get());
}

/// The recording does not depend on it.
void CaptureSession::startJournal()
{
    try {
        m_journal = std::make_unique<Journal>(m_bundleURL, meta(0), [this, log = m_log] {
            return Journal::News{log->takeNews(), m_sideRecorders.startTimes()};
        });
    } catch (const Error& error) {
        std::cerr << "warning: the recording's journal: " << error.what() << '\n';
    }
}

FrameVerdict CaptureSession::handle(const CapturedFrame& frame)
{
    const FrameVerdict verdict = m_intake.handle(frame);
    if (const auto epoch = m_intake.epoch(); m_journal && epoch) {
        m_journal->setEpoch(*epoch);
    }
    if (verdict == FrameVerdict::Refused && m_writer->hasFailed()) {
        reportFailedWriter();
    }
    return verdict;
}

/// Once. Nobody should go on in front of a recording that takes nothing in.
void CaptureSession::reportFailedWriter()
{
    if (!std::exchange(m_hasReported, true) && onStreamStopped) {
        onStreamStopped(Error(ErrorCode::kMovieNotFinished, "the movie can no longer be written"));
    }
}

void CaptureSession::startStream(const FrameRequest& request)
{
    auto stream = m_desktop.frameSource(request);
    stream->start(
        [this](const CapturedFrame& frame) { return handle(frame); },
        [stopped = onStreamStopped](const std::optional<Error>& error) {
            std::cerr << "stream stopped: " << (error ? error->what() : "by the user") << '\n';
            if (stopped) {
                stopped(error);
            }
        });
    m_stream = std::move(stream);
}

/// Only when the stream is up: it is what the recording is about.
void CaptureSession::startDevices()
{
    if (recordNarration) {
        m_sideRecorders.startMicrophone(microphoneID);
    }
    if (recordWebcam) {
        m_sideRecorders.startCamera(cameraID);
    }
}

void CaptureSession::startCursorPolling()
{
    m_poll = std::make_unique<PointerPoll>(
        [log = m_log, input = m_input.get(), refresh = refreshWindowFrame(), tick = 0]() mutable {
            if (++tick % kTicksPerWindowRefresh == 0) {
                refresh();
            }
            if (const auto sample = input->pointerSample(monotonicSeconds())) {
                log->move(sample->time, sample->point);
            }
        });
}

/// For the poll's thread: lets the capture space follow the recorded window.
std::function<void()> CaptureSession::refreshWindowFrame() const
{
    if (!m_window) {
        return [] {};
    }
    return [log = m_log, query = m_desktop.windowFrameQuery(m_window->id), size = m_window->size] {
        if (const std::optional<Rect> frame = query()) {
            log->setSpace(following(log->space(), *frame, size));
        }
    };
}

SessionMeta CaptureSession::meta(double epoch) const
{
    return {
        .appName = appName,
        .pixelWidth = m_pixelWidth,
        .pixelHeight = m_pixelHeight,
        .scaleFactor = m_scale,
        .nominalFPS = kNominalFPS,
        .duration = std::max(0.0, m_intake.lastPTS() - epoch),
        .input = m_hasPointerOnly ? std::optional<std::string>("pointer") : std::nullopt};
}

} // namespace zento
