#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/X11Connection.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zento {

/// An application's window as the server has it on the screen.
struct X11Window {
    std::uint32_t processID = 0;
    PixelRect rect; // root pixels, with whatever the application draws around its contents
};

/// The window that a click at `pixel` goes to; nothing where no application answers for it.
std::optional<X11Window> windowUnder(const X11Connection& connection, Vec2 pixel);

/// The child of the root window that a window lies in: the frame a window manager puts around it,
/// or itself. Nothing for a window that is gone, and for the root window.
std::optional<xcb_window_t> topLevelOf(const X11Connection& connection, xcb_window_t window);

/// Where a window is on the screen as its user sees it: with the frame of the window manager,
/// without the margin for its shadow that an application may add (_GTK_FRAME_EXTENTS).
struct X11Placement {
    xcb_window_t topLevel = XCB_WINDOW_NONE;
    PixelRect whole; // root pixels: the top-level window with its border; its pixmap's size
    PixelRect frame; // root pixels: the part of it that the user sees
};

/// Nothing for a window that cannot be seen: minimised, rolled up to its title, or no longer there.
std::optional<X11Placement> placementOf(const X11Connection& connection, xcb_window_t window);

/// The window that its user works with: the active one. Where that is a window of this process, it
/// is on its way out of the picture, and the front one of those behind it counts.
std::optional<xcb_window_t> frontmostWindow(const X11Connection& connection);

/// The name of the application that a window belongs to; nothing if it does not say.
std::optional<std::string> applicationOf(const X11Connection& connection, xcb_window_t window);

} // namespace zento
