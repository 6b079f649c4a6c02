#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/Messages.h"
#include "Zento/Model/Permissions.h"
#include "Zento/Model/RecordingCapture.h"
#include "Zento/Model/RecordingLibrary.h"
#include "Zento/Model/SettingsModel.h"
#include "Zento/Model/Worker.h"
#include "ZentoCapture/Desktop.h"

#include <QDateTime>
#include <QObject>
#include <QRectF>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zento {

/// What the application is doing, and how a recording begins and ends.
///
/// Where the user chooses in a dialog of the desktop's what is recorded, that comes first, before
/// the countdown. Nothing can be left out of the picture there, so no stop panel floats: a
/// recording is ended by the hot key, the tray, the desktop's own sign that it is watched, or in
/// the main window, which comes back for it when the program is started again.
///
/// Threading: the main thread; capture and disk are used in the background.
class RecordingFlow : public QObject {
    Q_OBJECT
    Q_PROPERTY(Phase phase READ phase NOTIFY phaseChanged)
    /// Of `Rendering` and `ExportingGif`: [0, 1].
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    /// The number the countdown panel shows.
    Q_PROPERTY(int countdownRemaining READ countdownRemaining NOTIFY countdownRemainingChanged)
    /// Invalid while nothing is recorded.
    Q_PROPERTY(QDateTime recordingStarted READ recordingStarted NOTIFY recordingStartedChanged)
    /// What the stop panel's clock shows: "0:07". Empty while nothing is recorded.
    Q_PROPERTY(QString elapsed READ elapsed NOTIFY elapsedChanged)
    /// The recording is being written; `phase` is still `Recording`.
    Q_PROPERTY(bool isStopping READ isStopping NOTIFY isStoppingChanged)
    /// Whether the floating panels are up. The stop panel is not, from the first press of stop on.
    Q_PROPERTY(bool countdownVisible READ countdownVisible NOTIFY panelsChanged)
    Q_PROPERTY(bool stopPanelVisible READ stopPanelVisible NOTIFY panelsChanged)
    /// The display the panels belong on, in the desktop's points: the countdown stands in its
    /// middle (220 × 250), the stop panel (260 × 56) 80 above its lower edge, centred.
    Q_PROPERTY(QRectF panelDisplay READ panelDisplay NOTIFY panelsChanged)
    /// The application's own windows are out of sight.
    Q_PROPERTY(bool isApplicationHidden READ isApplicationHidden NOTIFY isApplicationHiddenChanged)

public:
    enum class Phase { Idle, CountingDown, Recording, Rendering, ExportingGif };
    Q_ENUM(Phase)

    struct Ports {
        Clock& clock;
        Worker& capture; // starts and stops recordings
        Worker& files;
        SettingsModel& settings;
        Permissions& permissions;
        RecordingLibrary& library;
        Messages& messages;
        CaptureFactory makeCapture;
        Desktop::Choice choice = Desktop::Choice::ByProgram; // of what is recorded
        /// Bytes free where the recordings lie; nothing when the system does not say. Blocks.
        std::function<std::optional<std::int64_t>()> freeSpace;
        /// Switches the desktop's notifications, by an action's name. Does not block.
        std::function<void(const std::string&)> runAction;
        /// The display a target lies on, in points: for the panels.
        std::function<QRectF(const CaptureTarget&)> displayOf;
        /// The windows that shall not be in the film, as they are called now.
        std::function<std::vector<std::uint32_t>()> excludedWindows;
    };

    explicit RecordingFlow(Ports ports);
    ~RecordingFlow() override;

    Phase phase() const { return m_phase; }
    double progress() const { return m_progress; }
    int countdownRemaining() const { return m_countdownRemaining; }
    QDateTime recordingStarted() const { return m_recordingStarted; }
    QString elapsed() const;
    bool isStopping() const { return m_isStopping; }
    bool countdownVisible() const { return m_phase == Phase::CountingDown; }
    bool stopPanelVisible() const
    {
        return m_phase == Phase::Recording && !m_isStopping
               && m_ports.choice == Desktop::Choice::ByProgram;
    }
    QRectF panelDisplay() const { return m_panelDisplay; }
    bool isApplicationHidden() const { return m_isApplicationHidden; }

    /// Stops a recording, cancels a countdown or what the user is asked before it, or starts to
    /// record the display under the pointer.
    Q_INVOKABLE void toggleRecording();

    /// The display under the pointer, or the one the user chose the last time.
    Q_INVOKABLE void recordDisplay();
    /// The display the user chooses now. For `Desktop::Choice::ByUser`.
    Q_INVOKABLE void chooseDisplay();
    /// For `Desktop::Choice::ByUser` the one that the user chooses then, whatever the number.
    Q_INVOKABLE void recordWindow(quint32 windowID);
    /// Global points.
    Q_INVOKABLE void recordArea(const QRectF& area);

    Q_INVOKABLE void cancelCountdown();
    Q_INVOKABLE void stopRecording() { stopRecording(std::nullopt); }

    /// Only when idle; otherwise nothing happens.
    void startRecording(
        const CaptureTarget& target, CaptureOrder::Asking asking = CaptureOrder::Asking::Once);

    /// `systemReason` is why the desktop or a guard forced the stop; absent when the user asked.
    void stopRecording(const std::optional<Error>& systemReason);

    /// Takes the application out of sight, or back and to the front.
    void hideApplication();
    void showApplication();

    /// An export under way, which no recording may start in. False unless idle.
    bool beginExport(Phase phase);
    void setProgress(double fraction);
    void endExport();

    /// Runs `done` when no recording is under way any more: at once when there is none, else after
    /// it has been stopped and written.
    void finish(std::function<void()> done);

Q_SIGNALS:
    void phaseChanged();
    void progressChanged();
    void countdownRemainingChanged();
    void recordingStartedChanged();
    void elapsedChanged();
    void isStoppingChanged();
    void panelsChanged();
    void isApplicationHiddenChanged();
    /// The application's window shall come to the front and take the keyboard.
    void activationRequested();

private:
    struct Running;

    Ports m_ports;
    Phase m_phase = Phase::Idle;
    double m_progress = 0;
    int m_countdownRemaining = 0;
    QDateTime m_recordingStarted;
    QRectF m_panelDisplay;
    bool m_isStarting = false; // the disk or the user is being asked
    bool m_isStopping = false;
    bool m_isApplicationHidden = false;
    std::shared_ptr<Running> m_asked; // its user is choosing, or has chosen: not yet recorded
    std::shared_ptr<Running> m_capture;
    std::unique_ptr<Timer> m_countdown;
    std::unique_ptr<Timer> m_diskGuard;
    std::unique_ptr<Timer> m_elapsedTimer;
    std::vector<std::function<void()>> m_onFinished;

    void setPhase(Phase phase);
    void setStopping(bool isStopping);
    void setRecordingStarted(const QDateTime& date);
    void
    startWith(const CaptureTarget& target, CaptureOrder::Asking asking, std::int64_t freeBytes);
    void ask(const CaptureTarget& target, CaptureOrder::Asking asking);
    void dropAsked();
    void countDown(const CaptureTarget& target);
    void runCountdown(const CaptureTarget& target, int seconds);
    void beginCapture(const CaptureTarget& target);
    std::shared_ptr<Running> newRunning(const CaptureTarget& target) const;
    std::function<void(const std::optional<Error>&)> streamStopped();
    void startFailed(const std::string& description);
    void startDiskGuard();
    void stopped(const std::optional<Error>& systemReason);
    void endRecording();
};

} // namespace zento
