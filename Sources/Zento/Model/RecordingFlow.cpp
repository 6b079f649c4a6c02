#include "Zento/Model/RecordingFlow.h"

#include "ZentoCore/SessionBundle.h"

#include <QLocale>
#include <QPointer>
#include <QStringList>

#include <array>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace zento {

namespace {

constexpr std::int64_t kLeastToStart = 2'000'000'000; // bytes
constexpr std::int64_t kLeastToGoOn = 500'000'000;
constexpr std::chrono::seconds kDiskGuardInterval{5};
constexpr std::chrono::seconds kSecond{1};
constexpr double kTellDropsAbove = 0.02; // of all frames

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

QDateTime dateTime(Clock::Instant instant)
{
    const auto since = std::chrono::floor<std::chrono::milliseconds>(instant.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(since.count());
}

std::optional<std::string> chosen(const std::string& device)
{
    return device.empty() ? std::nullopt : std::optional(device);
}

/// A side recorder with the file it should have left.
struct SideFile {
    bool isWanted;
    std::filesystem::path file;
    const char* name;
};

/// The names of the recorders that left no file.
std::vector<const char*> missingSideFiles(const CaptureOrder& order)
{
    const SessionBundle bundle{.url = order.bundle};
    const std::array<SideFile, 3> files{{
        {order.recordNarration, bundle.narrationURL(), QT_TR_NOOP("microphone")},
        {order.recordWebcam, bundle.webcamURL(), QT_TR_NOOP("camera")},
        {order.recordSystemAudio, bundle.systemAudioURL(), QT_TR_NOOP("system audio")},
    }};
    std::vector<const char*> missing;
    for (const SideFile& side : files) {
        std::error_code ignored;
        if (side.isWanted && !std::filesystem::exists(side.file, ignored)) {
            missing.push_back(side.name);
        }
    }
    return missing;
}

void removeFolder(const std::filesystem::path& folder)
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

} // namespace

/// A recording and what became of it. While the worker is at it, all but `order` are the worker's.
struct RecordingFlow::Running {
    CaptureOrder order;
    std::stop_source stopping; // what is asked before it starts
    std::unique_ptr<RecordingCapture> capture;
    bool hasFailed = false; // at its start
    std::vector<const char*> missing;
    int frameCount = 0;
    int droppedFrameCount = 0;
};

RecordingFlow::RecordingFlow(Ports ports)
    : m_ports(std::move(ports))
{
}

/// A recording that is still there ends where it was made, off the main thread.
RecordingFlow::~RecordingFlow()
{
    dropAsked();
    if (m_capture) {
        m_ports.capture.run([capture = m_capture] { capture->capture.reset(); }, [] {});
    }
}

QString RecordingFlow::elapsed() const
{
    if (!m_recordingStarted.isValid()) {
        return {};
    }
    const qint64 seconds = m_recordingStarted.secsTo(dateTime(m_ports.clock.now()));
    return QString("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0'));
}

void RecordingFlow::setPhase(Phase phase)
{
    if (m_phase != phase) {
        m_phase = phase;
        Q_EMIT phaseChanged();
        Q_EMIT panelsChanged();
    }
}

void RecordingFlow::setStopping(bool isStopping)
{
    if (m_isStopping != isStopping) {
        m_isStopping = isStopping;
        Q_EMIT isStoppingChanged();
        Q_EMIT panelsChanged();
    }
}

void RecordingFlow::setRecordingStarted(const QDateTime& date)
{
    m_recordingStarted = date;
    m_elapsedTimer = date.isValid()
                         ? m_ports.clock.every(kSecond, [this] { Q_EMIT elapsedChanged(); })
                         : nullptr;
    Q_EMIT recordingStartedChanged();
    Q_EMIT elapsedChanged();
}

void RecordingFlow::hideApplication()
{
    if (!std::exchange(m_isApplicationHidden, true)) {
        Q_EMIT isApplicationHiddenChanged();
    }
}

void RecordingFlow::showApplication()
{
    if (std::exchange(m_isApplicationHidden, false)) {
        Q_EMIT isApplicationHiddenChanged();
    }
    Q_EMIT activationRequested();
}

void RecordingFlow::toggleRecording()
{
    if (m_phase == Phase::Recording) {
        stopRecording();
    } else if (m_phase == Phase::CountingDown) {
        cancelCountdown();
    } else if (m_asked) {
        m_isStarting = false;
        dropAsked();
        showApplication();
    } else if (m_phase == Phase::Idle && m_ports.permissions.canRecord()) {
        startRecording(Target::Display{});
    }
}

void RecordingFlow::recordDisplay()
{
    startRecording(Target::Display{});
}

void RecordingFlow::chooseDisplay()
{
    startRecording(Target::Display{}, CaptureOrder::Asking::Again);
}

/// Whoever asks for a window means to say which.
void RecordingFlow::recordWindow(quint32 windowID)
{
    startRecording(Target::Window{windowID}, CaptureOrder::Asking::Again);
}

void RecordingFlow::recordArea(const QRectF& area)
{
    startRecording(Target::Area{{area.x(), area.y(), area.width(), area.height()}});
}

void RecordingFlow::startRecording(const CaptureTarget& target, CaptureOrder::Asking asking)
{
    if (m_phase != Phase::Idle || m_isStarting) {
        return;
    }
    m_isStarting = true;
    m_ports.messages.clearErrorMessage();
    compute(
        m_ports.files,
        this,
        m_ports.freeSpace,
        [this, target, asking](const Outcome<std::optional<std::int64_t>>& free) {
            // What the system does not tell never stands in the way.
            const auto bytes = free.value_or(std::nullopt);
            if (std::exchange(m_isStarting, false) && m_phase == Phase::Idle) {
                startWith(target, asking, bytes.value_or(std::numeric_limits<std::int64_t>::max()));
            }
        });
}

void RecordingFlow::startWith(
    const CaptureTarget& target, CaptureOrder::Asking asking, std::int64_t freeBytes)
{
    if (freeBytes < kLeastToStart) {
        const QString free = QLocale().formattedDataSize(freeBytes, 1, QLocale::DataSizeSIFormat);
        m_ports.messages.setErrorMessage(tr("Not enough free disk space to record — %1 left, and a "
                                            "recording needs about 1 GB per minute.")
                                             .arg(free));
        if (m_isApplicationHidden) {
            showApplication(); // a picker had hidden it
        }
        return;
    }
    m_panelDisplay = m_ports.displayOf(target);
    if (m_ports.choice == Desktop::Choice::ByUser) {
        ask(target, asking);
    } else {
        countDown(target);
    }
}

/// The dialog has the screen for itself.
void RecordingFlow::ask(const CaptureTarget& target, CaptureOrder::Asking asking)
{
    m_isStarting = true;
    m_asked = newRunning(target);
    m_asked->order.asking = asking;
    hideApplication();
    compute(
        m_ports.capture,
        this,
        [running = m_asked, make = m_ports.makeCapture, stopped = streamStopped()] {
            running->capture = make(running->order, stopped);
            running->capture->choose(running->stopping.get_token());
        },
        [this, running = m_asked](const Outcome<void>& chosen) {
            if (running != m_asked) {
                return; // it was given up
            }
            m_isStarting = false;
            if (chosen) {
                countDown(running->order.target);
            } else {
                dropAsked();
                m_ports.messages.setErrorMessage(
                    tr("Could not start recording: %1").arg(text(chosen.error())));
                showApplication();
            }
        });
}

/// It ends where it was made, off the main thread.
void RecordingFlow::dropAsked()
{
    if (const auto asked = std::exchange(m_asked, nullptr)) {
        asked->stopping.request_stop();
        m_ports.capture.run([asked] { asked->capture.reset(); }, [] {});
    }
}

void RecordingFlow::countDown(const CaptureTarget& target)
{
    const int seconds = m_ports.settings.current().countdownSeconds;
    if (seconds >= 1) {
        runCountdown(target, seconds);
    } else {
        beginCapture(target);
    }
}

void RecordingFlow::runCountdown(const CaptureTarget& target, int seconds)
{
    m_countdownRemaining = seconds;
    Q_EMIT countdownRemainingChanged();
    setPhase(Phase::CountingDown);
    hideApplication();
    m_countdown = m_ports.clock.every(kSecond, [this, target] {
        if (m_countdownRemaining > 1) {
            --m_countdownRemaining;
            Q_EMIT countdownRemainingChanged();
            return;
        }
        const CaptureTarget counted = target; // the timer goes, and its copy with it
        m_countdown.reset();
        beginCapture(counted);
    });
}

void RecordingFlow::cancelCountdown()
{
    if (m_phase != Phase::CountingDown) {
        return;
    }
    m_countdown.reset();
    dropAsked();
    setPhase(Phase::Idle);
    showApplication();
}

std::shared_ptr<RecordingFlow::Running> RecordingFlow::newRunning(const CaptureTarget& target) const
{
    const AppSettings& settings = m_ports.settings.current();
    auto running = std::make_shared<Running>();
    running->order = {
        .bundle = m_ports.library.folder() / bundleName(m_ports.clock.now()),
        .target = target,
        .recordNarration = settings.recordNarration,
        .recordWebcam = settings.recordWebcam,
        .recordSystemAudio = settings.recordSystemAudio,
        .microphoneID = chosen(settings.microphoneID),
        .cameraID = chosen(settings.cameraID),
        .excludeWindowIDs = m_ports.excludedWindows()};
    return running;
}

/// For a thread of the capture, which may outlive this object.
std::function<void(const std::optional<Error>&)> RecordingFlow::streamStopped()
{
    const std::shared_ptr<QObject> relay(
        new QObject, [](QObject* object) { object->deleteLater(); });
    return [relay, self = QPointer(this)](const std::optional<Error>& reason) {
        QMetaObject::invokeMethod(
            relay.get(),
            [self, reason] {
                if (self) {
                    self->stopRecording(reason);
                }
            },
            Qt::QueuedConnection);
    };
}

void RecordingFlow::beginCapture(const CaptureTarget& target)
{
    m_capture = m_asked ? std::exchange(m_asked, nullptr) : newRunning(target);
    setPhase(Phase::Recording);
    setRecordingStarted(dateTime(m_ports.clock.now()));
    hideApplication();
    if (m_ports.settings.current().muteNotifications) {
        m_ports.runAction(m_ports.settings.current().focusOnShortcut);
    }
    startDiskGuard();
    compute(
        m_ports.capture,
        this,
        [running = m_capture, make = m_ports.makeCapture, stopped = streamStopped()] {
            try {
                if (!running->capture) {
                    running->capture = make(running->order, stopped);
                }
                running->capture->start();
            } catch (...) {
                running->capture.reset();
                running->hasFailed = true;
                removeFolder(running->order.bundle);
                throw;
            }
        },
        [this, running = m_capture](const Outcome<void>& started) {
            if (!started && running == m_capture) {
                startFailed(started.error());
            }
        });
}

void RecordingFlow::startFailed(const std::string& description)
{
    m_diskGuard.reset();
    if (m_ports.settings.current().muteNotifications && !m_isStopping) {
        m_ports.runAction(m_ports.settings.current().focusOffShortcut);
    }
    m_ports.messages.setErrorMessage(tr("Could not start recording: %1").arg(text(description)));
    endRecording();
}

void RecordingFlow::startDiskGuard()
{
    m_diskGuard = m_ports.clock.every(kDiskGuardInterval, [this] {
        compute(
            m_ports.files,
            this,
            m_ports.freeSpace,
            [this](const Outcome<std::optional<std::int64_t>>& free) {
                if (m_phase == Phase::Recording
                    && free.value_or(std::nullopt).value_or(kLeastToGoOn) < kLeastToGoOn) {
                    stopRecording(Error(ErrorCode::kDiskFull, "the disk is almost full"));
                }
            });
    });
}

void RecordingFlow::stopRecording(const std::optional<Error>& systemReason)
{
    if (!m_capture || m_isStopping) {
        return;
    }
    setStopping(/*isStopping=*/true);
    m_diskGuard.reset();
    if (m_ports.settings.current().muteNotifications) {
        m_ports.runAction(m_ports.settings.current().focusOffShortcut);
    }
    compute(
        m_ports.capture,
        this,
        [running = m_capture, folder = m_ports.library.folder()] {
            if (running->hasFailed) {
                return;
            }
            try {
                running->capture->stop();
            } catch (...) {
                running->capture.reset();
                if (const auto orphan = newestOrphanBundle(folder)) {
                    removeFolder(*orphan);
                }
                throw;
            }
            running->frameCount = running->capture->frameCount();
            running->droppedFrameCount = running->capture->droppedFrameCount();
            running->missing = missingSideFiles(running->order);
            running->capture.reset();
        },
        [this, running = m_capture, systemReason](const Outcome<void>& written) {
            if (running != m_capture) {
                return; // it never began, which has been told
            }
            if (written) {
                m_ports.library.refresh([this, systemReason] { stopped(systemReason); });
            } else {
                m_ports.messages.setErrorMessage(
                    tr("Recording failed: %1").arg(text(written.error())));
                endRecording();
            }
        });
}

/// The recording is written and listed.
void RecordingFlow::stopped(const std::optional<Error>& systemReason)
{
    const Running& running = *m_capture;
    QStringList messages;
    if (systemReason) {
        messages.append(tr("Recording was stopped early: %1.").arg(systemReason->what()));
    }
    if (!m_ports.library.items().empty()) {
        m_ports.library.selectNewest();
        QStringList names;
        for (const char* name : running.missing) {
            names.append(tr(name));
        }
        if (!names.isEmpty()) {
            messages.append(tr("The %1 didn't record — check permissions in Record → Permissions, "
                               "then try again.")
                                .arg(names.join(tr(" and "))));
        }
    }
    const int dropped = running.droppedFrameCount;
    const int frames = running.frameCount + dropped;
    if (frames >= 1 && static_cast<double>(dropped) / frames > kTellDropsAbove) {
        messages.append(tr("%1 of %2 frames were dropped — the computer was under load, so the "
                           "video may stutter.")
                            .arg(dropped)
                            .arg(frames));
    }
    if (!messages.isEmpty()) {
        m_ports.messages.setErrorMessage(messages.join(' '));
    }
    endRecording();
}

/// The end of every recording, whatever became of it.
void RecordingFlow::endRecording()
{
    m_capture.reset();
    setPhase(Phase::Idle);
    setRecordingStarted({});
    showApplication();
    setStopping(/*isStopping=*/false);
    for (const auto& done : std::exchange(m_onFinished, {})) {
        done();
    }
}

bool RecordingFlow::beginExport(Phase phase)
{
    if (m_phase != Phase::Idle || (phase != Phase::Rendering && phase != Phase::ExportingGif)) {
        return false;
    }
    setProgress(0);
    setPhase(phase);
    return true;
}

void RecordingFlow::setProgress(double fraction)
{
    m_progress = fraction;
    Q_EMIT progressChanged();
}

void RecordingFlow::endExport()
{
    if (m_phase == Phase::Rendering || m_phase == Phase::ExportingGif) {
        setPhase(Phase::Idle);
    }
}

void RecordingFlow::finish(std::function<void()> done)
{
    m_isStarting = false;
    cancelCountdown();
    dropAsked();
    if (!m_capture) {
        done();
        return;
    }
    m_onFinished.push_back(std::move(done));
    stopRecording();
}

} // namespace zento
