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

/// The accessible element at a point of the window that has the keyboard, with its frame; both in
/// points of that window. For desktops whose programs know no places but those.
///
/// Nothing unless exactly one window says that it is active, it has that `size`, in points, and its
/// application shows no menu or other popup, which might lie anywhere over it.
///
/// Threading: as above.
std::optional<Element> elementOfActiveWindow(Vec2 size, Vec2 point);

} // namespace zento
