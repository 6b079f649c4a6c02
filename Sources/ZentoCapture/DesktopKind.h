#pragma once

#include <string>

namespace zento {

/// The way a session's screen is recorded.
enum class DesktopKind : unsigned char { None, X11, Wayland };

/// What a session says of itself.
struct SessionFacts {
    std::string sessionType;    // XDG_SESSION_TYPE
    std::string waylandDisplay; // WAYLAND_DISPLAY
    std::string x11Display;     // DISPLAY
    unsigned screenCast = 0;    // version of the ScreenCast portal; 0: there is none
    bool isWaylandSession() const;
    bool operator==(const SessionFacts&) const = default;
};

/// A Wayland session is recorded through its portal or not at all: the X server that most of them
/// run besides shows nothing but its own clients.
DesktopKind desktopKind(const SessionFacts& facts);

/// Of this process's session, as far as its variables say. Asks nobody: `screenCast` is 0.
SessionFacts environmentFacts();

/// Of this process's session. Asks the portal, where it matters, and waits for it ten seconds at
/// most.
SessionFacts sessionFacts();

/// "X11", "Wayland" or "no desktop".
std::string name(DesktopKind kind);

} // namespace zento
