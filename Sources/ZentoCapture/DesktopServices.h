#pragma once

#include "ZentoCapture/DesktopKind.h"

#include <string>
#include <vector>

namespace zento {

/// How the clicks, keys and turns of the wheel of a session can be read.
enum class InputAccess : unsigned char {
    None,
    Server,  // from the X server
    Devices, // from /dev/input, which the user may read
};

/// The `InputAccess` there is on a Wayland desktop. Looks at the files' permissions alone.
InputAccess deviceInputAccess();

/// Versions of the desktop's portals; 0: there is none of that kind.
struct PortalVersions {
    unsigned screenCast = 0;
    unsigned screenshot = 0;
    unsigned globalShortcuts = 0;
    unsigned remoteDesktop = 0;
    bool operator==(const PortalVersions&) const = default;
};

/// What the ScreenCast portal can show.
struct ScreenCastOffer {
    bool monitors = false;
    bool windows = false;
    bool pointerAsMetadata = false;
    bool operator==(const ScreenCastOffer&) const = default;
};

/// The services a recording stands on, as this session has them.
struct DesktopServices {
    SessionFacts facts;
    bool hasDisplay = false; // one that answers
    bool hasSessionBus = false;
    PortalVersions portals;
    ScreenCastOffer offer;
    bool hasPipeWire = false;
    std::vector<std::string> microphones; // names for people
    std::vector<std::string> cameras;
    InputAccess input = InputAccess::None;
    bool hasAccessibility = false; // the bus is switched on
};

/// Asks each of them. Blocks, for some seconds where one does not answer. Never throws.
DesktopServices desktopServices();

} // namespace zento
