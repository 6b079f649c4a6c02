#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/X11Connection.h"

#include <cstdint>
#include <optional>

namespace zento {

/// An application's window as the server has it on the screen.
struct X11Window {
    std::uint32_t processID = 0;
    PixelRect rect; // root pixels, with whatever the application draws around its contents
};

/// The window that a click at `pixel` goes to; nothing where no application answers for it.
std::optional<X11Window> windowUnder(const X11Connection& connection, Vec2 pixel);

} // namespace zento
