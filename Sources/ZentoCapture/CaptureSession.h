#pragma once

#include "ZentoCapture/CaptureTarget.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/FrameIntake.h"
#include "ZentoCapture/InputLog.h"
#include "ZentoCapture/Journal.h"
#include "ZentoCapture/PointerPoll.h"
#include "ZentoCapture/ScreenWriter.h"
#include "ZentoCapture/SideRecorders.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/SessionMeta.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// One recording: a bundle folder and a target, from `start` to `stop`.
///
/// The time of the first video frame is the recording's epoch; all else is measured on the same
/// clock and told against it. The movie gets a frame when the screen changes, so its rate varies
/// and a still screen leaves a gap.
///
/// The fields are set before `start`. Dropping a session that was not stopped leaves the folder
/// without "meta.json": an orphan for the caller to remove, or for `recover` to complete.
///
/// Threading: `start` and `stop` block, and are called by one thread at a time; the counters may be
/// read by any thread meanwhile.
class CaptureSession {
public:
    /// The desktop must outlive `start`.
    CaptureSession(
        std::filesystem::path bundleURL,
        Desktop& desktop,
        ScreenWriterFactory makeWriter = makeScreenWriter,
        SideRecorderFactories sideRecorders = sideRecorderFactories());
    ~CaptureSession();
    CaptureSession(const CaptureSession&) = delete;
    CaptureSession& operator=(const CaptureSession&) = delete;

    CaptureTarget target;

    /// Windows left out of the picture of a display or of an area: what lies below shows instead.
    /// Numbers that no window has mean nothing. It costs time only where there are some.
    std::vector<std::uint32_t> excludeWindowIDs;

    /// What was recorded, for the metadata; `start` fills it in.
    std::optional<std::string> appName;

    // What is recorded beside the screen. A recorder that cannot start is told of on standard
    // error and left out; the recording goes on. An id that no device has means the default one.
    bool recordNarration = false;
    std::optional<std::string> microphoneID;
    bool recordWebcam = false;
    std::optional<std::string> cameraID;
    bool recordSystemAudio = false;

    /// The desktop ended the capture, without an error when the user did; or the movie can no
    /// longer be written. The recording goes on without frames until `stop`. Runs on the thread
    /// "capture.video", which must not call `stop`.
    std::function<void(const std::optional<Error>&)> onStreamStopped;

    /// Lets the user choose what is recorded, where the desktop asks them; to be called before
    /// `start`, which does it otherwise. Throws `Error` as `Desktop::choose`.
    void choose(const std::stop_token& stop);

    /// Returns when the capture runs. Listening for input is the first thing to start, so that a
    /// missing right to listen fails before anything exists.
    ///
    /// Throws `Error`: 20 without a display, 24 when the window is gone or minimised, 25 without
    /// input, or what the desktop, the folder or the writer say. The session is then good for
    /// nothing but `stop` and the destructor.
    ///
    /// `stop` gives up waiting for the user, where the desktop asks what may be recorded.
    void start(const std::stop_token& stop = {});

    /// Returns when the bundle is written.
    ///
    /// Throws `Error`: 23 "no frames captured", or what the writer or the folder say; no metadata
    /// is written then, and the journal stays.
    void stop();

    /// The epoch in seconds of CLOCK_MONOTONIC; to be read after `stop`. None without a frame.
    std::optional<double> epoch() const { return m_intake.epoch(); }

    int frameCount() const { return m_intake.frameCount(); }               // frames in the movie
    int droppedFrameCount() const { return m_intake.droppedFrameCount(); } // the writer was busy

private:
    void startEventTap();
    void stopEventTap() noexcept;
    FrameRequest prepare();
    void startWriter();
    void startJournal();
    FrameVerdict handle(const CapturedFrame& frame);
    void reportFailedWriter();
    void startStream(const FrameRequest& request);
    void startDevices();
    void startCursorPolling();
    std::function<void()> refreshWindowFrame() const;
    SessionMeta meta(double epoch) const;

    std::filesystem::path m_bundleURL;
    Desktop& m_desktop;
    ScreenWriterFactory m_makeWriter;
    double m_scale = 2; // pixels per point of the captured display
    int m_pixelWidth = 0;
    int m_pixelHeight = 0;
    std::optional<RequestedWindow> m_window; // of a window's recording
    std::shared_ptr<InputLog> m_log;
    FrameIntake m_intake;
    SideRecorders m_sideRecorders;

    bool m_isChosen = false;
    bool m_hasReported = false;         // that the writer failed
    std::unique_ptr<Journal> m_journal; // absent where it could not be made

    // Torn down from the last to the first: who calls goes before what is called.
    std::unique_ptr<ScreenWriter> m_writer;
    std::unique_ptr<FrameSource> m_stream;
    std::unique_ptr<InputSource> m_input;
    bool m_hasPointerOnly = false;
    std::unique_ptr<PointerPoll> m_poll;
};

} // namespace zento
