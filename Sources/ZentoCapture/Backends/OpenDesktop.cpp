#include "ZentoCapture/Backends/PortalDesktop.h"
#include "ZentoCapture/Backends/X11Desktop.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/DesktopKind.h"
#include "ZentoCore/Error.h"

namespace zento {

std::unique_ptr<Desktop> openDesktop(const std::optional<std::string>& displayName)
{
    if (displayName) {
        return std::make_unique<X11Desktop>(*displayName);
    }
    const SessionFacts facts = sessionFacts();
    switch (desktopKind(facts)) {
    case DesktopKind::Wayland:
        return std::make_unique<PortalDesktop>(PortalDesktop::Parts{});
    case DesktopKind::X11:
        return std::make_unique<X11Desktop>("");
    case DesktopKind::None:
        break;
    }
    if (facts.isWaylandSession()) {
        throw Error(
            ErrorCode::kNoDisplay,
            "this Wayland session has no ScreenCast portal; install xdg-desktop-portal and the "
            "backend of your desktop");
    }
    return std::make_unique<X11Desktop>(""); // which says what is missing
}

} // namespace zento
