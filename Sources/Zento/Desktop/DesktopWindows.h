#pragma once

#include "Zento/Model/WindowList.h"

#include <QImage>

#include <cstdint>
#include <string>
#include <vector>

namespace zento {

/// The windows of an X desktop that its window manager knows, from the front to the back. None
/// without a server. `displayName` as in the environment's `DISPLAY`; empty takes that.
///
/// Threading: any thread; blocks on the server.
std::vector<DesktopWindow> desktopWindows(const std::string& displayName = {});

/// What a window shows, also where others cover it, at most `width` pixels wide. Null when the
/// window is gone, or shows nothing within a second.
///
/// Threading: any thread; blocks on the server.
QImage windowThumbnail(std::uint32_t windowID, int width, const std::string& displayName = {});

} // namespace zento
