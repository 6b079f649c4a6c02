#pragma once

#include "WaylandStage/WaylandStage.h"
#include "Zento/Demo/AccessibilityBus.h"

#include <optional>
#include <string>

namespace zento::test {

/// Looks at Zento and presses its buttons through the accessibility bus, which knows no places on
/// this desktop. The bus is switched on for programs that start later.
class AccessibleHand {
public:
    explicit AccessibleHand(WaylandStage& stage);

    /// `role`: empty for any. `name`: a regular expression for the whole of it.
    bool isShown(const std::string& role, const std::string& name) const;

    /// Waits until it is shown. Throws `Error` when it does not come or cannot be pressed.
    void press(const std::string& role, const std::string& name) const;

    /// The names of all that is shown, a line each: for what a test says.
    std::string everything() const;

private:
    std::optional<AccessibleObject> find(const std::string& role, const std::string& name) const;

    AccessibilityBus m_bus;
};

} // namespace zento::test
