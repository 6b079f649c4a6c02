#pragma once

#include "ZentoCore/Error.h"
#include "ZentoCore/Geometry.h"
#include "ZentoCore/Plane.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace zento {

/// What a `FrameSource` shall show.
struct FrameRequest {
    std::uint32_t displayID = 0;
    std::optional<Rect> sourceRect; // points, local to the display; absent: all of it
    int pixelWidth = 0;             // of every frame, for the whole recording
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

/// The pictures of a display while it changes.
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
