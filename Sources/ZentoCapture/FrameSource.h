#pragma once

#include "ZentoCore/Error.h"
#include "ZentoCore/Geometry.h"
#include "ZentoCore/Plane.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace zento {

struct RequestedWindow {
    std::uint32_t id = 0;
    Vec2 size; // points, when the recording's frame was laid out for it
    bool operator==(const RequestedWindow&) const = default;
};

/// What a `FrameSource` shall show: a window if there is one, else a display or a part of it.
struct FrameRequest {
    std::uint32_t displayID = 0;
    std::optional<Rect> sourceRect; // points, local to the display; absent: all of it
    std::optional<RequestedWindow> window;
    std::vector<std::uint32_t> excludedWindowIDs; // left out of a display's picture
    int pixelWidth = 0;                           // of every frame, for the whole recording
    int pixelHeight = 0;
};

enum class FrameStatus : unsigned char { Complete, Incomplete };

/// One picture of the screen, without the pointer.
struct CapturedFrame {
    BgraView picture; // valid during the call it is handed to
    double time = 0;  // seconds of CLOCK_MONOTONIC; never before a change that the picture shows
    FrameStatus status = FrameStatus::Complete; // an incomplete one is a notice, no picture
};

/// What became of a frame.
enum class FrameVerdict : unsigned char { Taken, Refused };

/// The pictures of a display or of a window while it changes.
///
/// Every frame has the request's size. A part of a display that is no longer there keeps what it
/// last showed, and so does a window that is minimised or closed. A window is shown whether or not
/// others cover it. One that has changed its size is scaled into the frame as `CaptureSpace` says,
/// from the top left, over black.
///
/// A frame comes at once after `start`, then only when something in the picture has changed, at
/// most 60 in a second. The picture behind a refused frame comes again, so a still screen never
/// ends on an older state than the one the user saw.
///
/// Threading: `start` and `stop` from one thread; the handlers run on the source's own thread
/// "capture.video". A handler must not call `stop`.
class FrameSource {
public:
    static constexpr double kMinimumFrameInterval = 1.0 / 60; // seconds

    using FrameHandler = std::function<FrameVerdict(const CapturedFrame&)>;

    /// The source ended by itself: with no error when the user ended it with the desktop's own
    /// control. No frame follows.
    using EndHandler = std::function<void(const std::optional<Error>&)>;

    virtual ~FrameSource() = default;

    /// Throws `Error` when the capture cannot start.
    virtual void start(FrameHandler onFrame, EndHandler onEnd) = 0;

    /// After it returns no handler runs. Safe when nothing runs.
    virtual void stop() = 0;
};

} // namespace zento
