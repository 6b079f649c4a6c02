#pragma once

#include "ZentoCapture/CaptureTarget.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoImaging/Canvas.h"

#include <memory>
#include <stop_token>

namespace zento {

namespace ErrorCode {
inline constexpr int kShotDisplayGone = 40;
inline constexpr int kNoShot = 41;
} // namespace ErrorCode

/// A picture of the screen as it was taken: opaque, without the pointer.
struct Shot {
    std::shared_ptr<const Canvas> image;
    double scale = 1;       // pixels per point, [1, ∞)
    bool tellsScale = true; // else `scale` is a guess: the desktop took the picture itself
};

namespace ScreenshotTool {

/// Shoots a target once. A window is shot whether or not others cover it.
///
/// Threading: blocks for some frames; any thread, one at a time for a desktop.
/// Throws `Error`: 40 when the target's display is gone, 24 when its window is, 41 when it shows
/// nothing, 9 when it was stopped, or what the desktop says.
Shot capture(Desktop& desktop, const CaptureTarget& target, const std::stop_token& stop = {});

/// The same of what the user has chosen already, where that is how it goes: see `Desktop::choose`.
Shot captureChosen(Desktop& desktop, const CaptureTarget& target, const std::stop_token& stop = {});

} // namespace ScreenshotTool
} // namespace zento
