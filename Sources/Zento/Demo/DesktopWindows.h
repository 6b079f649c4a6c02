#pragma once

#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zento {

class XConnection;

// What a pager may do with the windows of a desktop, by the Extended Window Manager Hints.

/// Asks the window manager for the borders it would give a window, until it answers.
///
/// A window manager announces itself before its loop turns, and openbox leaves what arrives in
/// between in its queue until the next event: a window mapped then never appears.
class WindowManagerProbe {
public:
    /// The connection stays the caller's, who keeps it for as long as the probe.
    explicit WindowManagerProbe(const XConnection& connection);
    ~WindowManagerProbe();
    WindowManagerProbe(const WindowManagerProbe&) = delete;
    WindowManagerProbe& operator=(const WindowManagerProbe&) = delete;

    /// Asks once more, and says whether an earlier question was answered.
    bool isAnswered() const;

private:
    const XConnection& m_connection;
    std::uint32_t m_window = 0; // never mapped
};

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
