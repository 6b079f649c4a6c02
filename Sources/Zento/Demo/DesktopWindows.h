#pragma once

#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zento {

class XConnection;

// What a pager may do with the windows of a desktop, by the Extended Window Manager Hints.

/// True once a window manager looks after the display.
bool hasWindowManager(const XConnection& connection);

/// The managed window whose title contains `title`.
std::optional<std::uint32_t> windowTitled(const XConnection& connection, const std::string& title);

/// A text property of the root window; empty if there is none.
std::string rootText(const XConnection& connection, const std::string& property);

/// Asks the window manager to give the window, its borders included, the place `frame` (pixels of
/// the screen), and to bring it to the front.
void requestFrame(const XConnection& connection, std::uint32_t window, const Rect& frame);

/// Where the window with its borders stands now. An invisible shadow that a program draws around
/// itself (_GTK_FRAME_EXTENTS) does not count.
std::optional<Rect> frameOf(const XConnection& connection, std::uint32_t window);

} // namespace zento
