#include "ZentoCapture/DesktopKind.h"

namespace zento {

bool SessionFacts::isWaylandSession() const
{
    if (sessionType == "x11" && !x11Display.empty()) {
        return false; // a compositor in a window of an X desktop
    }
    return !waylandDisplay.empty() || (sessionType == "wayland" && x11Display.empty());
}

DesktopKind desktopKind(const SessionFacts& facts)
{
    if (facts.isWaylandSession()) {
        return facts.screenCast > 0 ? DesktopKind::Wayland : DesktopKind::None;
    }
    return facts.x11Display.empty() ? DesktopKind::None : DesktopKind::X11;
}

std::string name(DesktopKind kind)
{
    switch (kind) {
    case DesktopKind::X11:
        return "X11";
    case DesktopKind::Wayland:
        return "Wayland";
    case DesktopKind::None:
        break;
    }
    return "no desktop";
}

} // namespace zento
