#pragma once

#include "ZentoCapture/ElementLookup.h"
#include "ZentoCapture/FrameSource.h"
#include "ZentoCapture/InputSource.h"
#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zento {

enum class DisplayRole : unsigned char { Main, Further };

struct DisplayInfo {
    std::uint32_t id = 0; // the same for as long as the display is connected
    std::string name;     // as the system calls its connector: "DP-1"
    Rect bounds;          // global points
    double scale = 1;     // pixels per point
    DisplayRole role = DisplayRole::Further;
};

/// The displays of a user's session and the sources a recording draws from.
///
/// Threading: `displays` and the factories may be called from any thread, one at a time. What the
/// factories make is independent of this object.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// In the order of the desktop; none when nothing is connected. Throws `Error`.
    virtual std::vector<DisplayInfo> displays() = 0;

    /// In global points; nothing when it cannot be read.
    virtual std::optional<Vec2> pointerPosition() = 0;

    /// The name of the application whose window is active.
    virtual std::optional<std::string> frontmostApplication() = 0;

    /// Throws `Error` when the display is gone or a part of the request lies outside it.
    virtual std::unique_ptr<FrameSource> frameSource(const FrameRequest& request) = 0;

    virtual std::unique_ptr<InputSource> inputSource() = 0;
    virtual std::unique_ptr<ElementLookup> elementLookup() = 0;
};

/// The desktop of this session. Throws `Error` with the code 20 when there is none.
/// `displayName` names an X display, ":1"; absent, the environment's `DISPLAY`.
std::unique_ptr<Desktop> openDesktop(const std::optional<std::string>& displayName = {});

/// The first display that holds the point, else the main one, else the first; nothing of nothing.
std::optional<std::uint32_t> displayID(Vec2 containing, std::span<const DisplayInfo> displays);

} // namespace zento
