#pragma once

#include "ZentoCapture/CaptureTarget.h"
#include "ZentoCore/Error.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zento {

/// What a recording is asked for.
struct CaptureOrder {
    std::filesystem::path bundle;
    CaptureTarget target;
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
