#pragma once

#include "ZentoCore/Plane.h"
#include "ZentoMedia/Ffmpeg/Handles.h"

#include <cstdint>
#include <memory>

namespace zento::ffmpeg {

/// A frame for an encoder that points at somebody's samples, and copies nothing. `owner` keeps them
/// alive and unchanged for as long as the frame or a reference to it exists. `ticks`: its time.
template <typename Sample>
FrameHandle borrowedFrame(
    const YuvPlanes<const Sample>& picture,
    AVPixelFormat format,
    std::shared_ptr<const void> owner,
    std::int64_t ticks);

} // namespace zento::ffmpeg
