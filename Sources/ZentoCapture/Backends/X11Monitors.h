#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/X11Connection.h"

#include <span>
#include <vector>

namespace zento {

/// One display of an X screen.
struct X11Monitor {
    xcb_atom_t name = XCB_ATOM_NONE; // none where the server tells nothing about its monitors
    PixelRect rect;                  // root pixels
    bool isPrimary = false;
};

/// From left to right, then from top to bottom. The whole screen as one for a server without
/// RandR 1.5; none when the connection is broken.
std::vector<X11Monitor> monitors(const X11Connection& connection);

/// Where the root window is: its size now, not that of when the connection was made. Empty when the
/// connection is broken.
PixelRect rootRect(const X11Connection& connection);

/// The parts of `rect` that a monitor shows and the root window has; none lies within another, so
/// mirrored monitors count once.
std::vector<PixelRect>
shownParts(const PixelRect& rect, const PixelRect& root, std::span<const X11Monitor> monitors);

} // namespace zento
