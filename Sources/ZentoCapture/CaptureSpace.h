#pragma once

#include "ZentoCapture/ElementLookup.h"
#include "ZentoCapture/InputSource.h"
#include "ZentoCore/Geometry.h"
#include "ZentoCore/InputEvent.h"

#include <optional>

namespace zento {

/// The pixel grid of the recorded video, and how global points map to it:
/// fitScale × windowScale × ((point − originPoints) × scale).
struct CaptureSpace {
    Vec2 originPoints;      // global top-left corner of the capture
    double scale = 2;       // pixels per point of the captured display
    double windowScale = 1; // recorded width of the window over its current width
    double fitScale = 1;    // (0, 1]; below 1 while the window is too tall for the frame at that

    Vec2 map(Vec2 point) const;
    Rect map(const Rect& rect) const;

    bool operator==(const CaptureSpace&) const = default;
};

/// How many times larger a window's picture is in the frame than on the screen: the largest factor
/// at which the whole window fits what was laid out for `recorded`. Both sizes in one unit.
double shownScale(Vec2 recorded, Vec2 current);

/// The space of a window's recording while the window stands at `frame` (global points); `recorded`
/// is its size at the start. Unchanged for a window that is at most one point wide.
///
/// The window's top-left corner stays that of the frame and one factor serves both axes, so a
/// window resized in any way leaves black to the right or below, and a point of the window and its
/// picture still lie together: windowScale × fitScale is `shownScale`.
CaptureSpace following(const CaptureSpace& space, const Rect& frame, Vec2 recorded);

/// The log's record of an input, still on the host's clock. A scroll delta follows the display's
/// scale but not a window's: it says how far the wheel was turned.
InputEvent inputEvent(const RawInput& input, const CaptureSpace& space);

/// Nothing for an element without an area; "AXUnknown" for one without a role.
std::optional<AXInfo> axInfo(const Element& element, const CaptureSpace& space);

} // namespace zento
