#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zento {

/// Records one thing beside the screen into a file of its own, and tells when that file begins.
/// Made fresh for one recording.
///
/// Threading: `start` and `stop` by one thread at a time; `startTime` by any.
class SideRecorder {
public:
    virtual ~SideRecorder() = default; // one that runs is stopped, and its file left as it is

    /// Begins to record into `file`, replacing one that is there. `deviceID` is the device's name
    /// or number as the system's list gives it; an id that no device has means the default one, and
    /// a recorder that has no choice of devices does not look at it.
    ///
    /// Returns without waiting for the device. Throws `Error`; a file may be left then.
    virtual void
    start(const std::filesystem::path& file, const std::optional<std::string>& deviceID) = 0;

    /// Ends it. When the file's first sample happened, in seconds of CLOCK_MONOTONIC; nothing when
    /// there is no usable file: the caller deletes what is there.
    virtual std::optional<double> stop() noexcept = 0;

    /// What `stop` would return, unless the file fails till then.
    virtual std::optional<double> startTime() const = 0;
};

/// Makes the recorders of a session.
struct SideRecorderFactories {
    std::function<std::unique_ptr<SideRecorder>()> microphone;
    std::function<std::unique_ptr<SideRecorder>()> camera;
    std::function<std::unique_ptr<SideRecorder>()> systemAudio;
};

/// `MicRecorder`, `CameraRecorder` and `SystemAudioWriter`.
SideRecorderFactories sideRecorderFactories();

} // namespace zento
