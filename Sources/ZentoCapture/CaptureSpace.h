#pragma once

#include "ZentoCapture/ElementLookup.h"
#include "ZentoCapture/InputSource.h"
#include "ZentoCore/Geometry.h"
#include "ZentoCore/InputEvent.h"

#include <optional>

namespace zento {

/// The pixel grid of the recorded video, and how global points map to it:
/// windowScale × ((point − originPoints) × scale).
struct CaptureSpace {
    Vec2 originPoints;      // global top-left corner of the capture
    double scale = 2;       // pixels per point of the captured display
    double windowScale = 1; // recorded width of the window over its current width

    Vec2 map(Vec2 point) const;
    Rect map(const Rect& rect) const;

    bool operator==(const CaptureSpace&) const = default;
};

/// The log's record of an input, still on the host's clock. A scroll delta follows the display's
/// scale but not a window's: it says how far the wheel was turned.
InputEvent inputEvent(const RawInput& input, const CaptureSpace& space);

/// Nothing for an element without an area; "AXUnknown" for one without a role.
std::optional<AXInfo> axInfo(const Element& element, const CaptureSpace& space);

} // namespace zento
