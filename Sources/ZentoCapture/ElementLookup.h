#pragma once

#include "ZentoCore/Geometry.h"

#include <functional>
#include <optional>
#include <string>

namespace zento {

/// A control of some application, as its accessibility says.
struct Element {
    std::optional<std::string> role; // "AXButton", "AXTextField", …
    std::optional<std::string> title;
    Rect frame; // global points; may be empty
};

/// Finds the element at a place of the screen.
///
/// Threading: any thread.
class ElementLookup {
public:
    using Handler = std::function<void(const Element&)>;

    virtual ~ElementLookup() = default;

    /// Returns at once. `found` runs later on the lookup's own thread, in the order of the calls,
    /// perhaps after this object is gone; it does not run when there is no element or no answer.
    virtual void lookUp(Vec2 point, Handler found) = 0;
};

} // namespace zento
