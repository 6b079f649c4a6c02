#pragma once

#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <variant>

namespace zento {

namespace Target {

/// A given display.
struct Screen {
    std::uint32_t displayID = 0;
    bool operator==(const Screen&) const = default;
};

/// One window, with its title bar and borders, also where others cover it. It may be moved, resized
/// and minimised meanwhile.
struct Window {
    std::uint32_t windowID = 0;
    bool operator==(const Window&) const = default;
};

/// A part of the desktop; it may reach over several displays.
struct Area {
    Rect rect; // global points
    bool operator==(const Area&) const = default;
};

/// The display under the pointer when the recording starts.
struct Display {
    bool operator==(const Display&) const = default;
};

} // namespace Target

/// What a recording shows. The first case is the default.
using CaptureTarget = std::variant<Target::Display, Target::Screen, Target::Window, Target::Area>;

} // namespace zento
