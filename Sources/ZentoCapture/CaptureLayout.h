#pragma once

#include "ZentoCapture/CaptureTarget.h"
#include "ZentoCapture/Desktop.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zento {

/// What a target comes to on the desktop as it stands.
struct CaptureLayout {
    DisplayInfo display; // the one it lies on
    std::optional<WindowInfo> window;
    Rect captured; // global points
    FrameRequest request;
};

/// A target of even size in pixels. `excludedWindowIDs` count for what is no window.
///
/// Throws `Error`: 24 when the window is gone or minimised, 20 without a display, or what the
/// desktop says. A size below two pixels is the caller's to refuse.
CaptureLayout captureLayout(
    const CaptureTarget& target, Desktop& desktop, std::vector<std::uint32_t> excludedWindowIDs);

} // namespace zento
