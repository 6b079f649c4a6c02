#pragma once

#include "ZentoCapture/CaptureTarget.h"
#include "ZentoCore/Error.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// What a recording is asked for.
struct CaptureOrder {
    /// Where the user says in a dialog of the desktop's what is recorded: whether that of the last
    /// time will do, if the desktop remembers it.
    enum class Asking : unsigned char { Once, Again };

    std::filesystem::path bundle;
    CaptureTarget target;
    Asking asking = Asking::Once;
    bool recordNarration = false;
    bool recordWebcam = false;
    bool recordSystemAudio = false;
    std::optional<std::string> microphoneID; // absent: the default one
    std::optional<std::string> cameraID;
    std::vector<std::uint32_t> excludeWindowIDs;
};

/// A running recording, as the recording flow needs it.
///
/// Threading: one thread, which is not the main one: `start` and `stop` block.
class RecordingCapture {
public:
    virtual ~RecordingCapture() = default;

    /// Lets the user choose what is recorded, where they do that in a dialog of the desktop's.
    /// Blocks until they have; gives up when `stop` is requested. Throws as `start`, which follows.
    virtual void choose(const std::stop_token& stop) = 0;

    /// Throws `Error`; the object is then good for nothing but its destructor.
    virtual void start() = 0;

    /// Writes the bundle. Throws `Error`.
    virtual void stop() = 0;

    virtual int frameCount() const = 0;
    virtual int droppedFrameCount() const = 0;
};

/// Makes a recording; blocks and throws as `start` does. `onStreamStopped` may be called from any
/// thread, with no error when the user ended the capture with the desktop's own control.
using CaptureFactory = std::function<std::unique_ptr<RecordingCapture>(
    const CaptureOrder& order, std::function<void(const std::optional<Error>&)> onStreamStopped)>;

} // namespace zento
