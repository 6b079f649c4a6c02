#pragma once

#include "ZentoCore/Geometry.h"

#include <memory>
#include <optional>
#include <string>

namespace zento {

/// A hand on the wheel of the user's pointer, which Escape takes away.
///
/// Threading: one thread at a time.
class ScrollWheel {
public:
    virtual ~ScrollWheel() = default;

    /// Where the pointer is, in pixels of the desktop; nothing when it cannot be read.
    virtual std::optional<Vec2> pointer() = 0;
    virtual void movePointer(Vec2 pixel) = 0;

    /// Whether the user has pressed Escape since the wheel was opened. While it is, no other
    /// program sees that key.
    virtual bool isGivenUp() = 0;

    /// Turns the wheel down by so many notches over what lies at a pixel of the desktop.
    virtual void scroll(int notches, Vec2 pixel) = 0;
};

/// The wheel of an X display, through XTEST. `displayName` as in the environment's `DISPLAY`;
/// empty: that. Throws `Error` with the code 20 without a display, 25 if it takes no such input.
std::unique_ptr<ScrollWheel> openScrollWheel(const std::string& displayName);

} // namespace zento
