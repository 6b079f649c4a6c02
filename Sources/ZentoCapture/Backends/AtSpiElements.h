#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/ElementLookup.h"

#include <cstdint>
#include <optional>

namespace zento {

/// The accessible element of a process at a pixel of the screen, with its frame in root pixels.
///
/// `window` is the window that was hit, where the application has several. Waits for the
/// application, half a second a question at most.
///
/// Threading: one thread of the process, always the same.
std::optional<Element>
elementOfProcess(std::uint32_t processID, const PixelRect& window, Vec2 pixel);

} // namespace zento
