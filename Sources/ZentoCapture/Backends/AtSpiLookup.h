#pragma once

#include "ZentoCapture/ElementLookup.h"

#include <string>

namespace zento {

/// Elements by the accessibility bus, on an X11 desktop: the application is the one whose window
/// lies under the point. It is asked on the thread of `askAccessibility`.
class AtSpiLookup final : public ElementLookup {
public:
    /// The display is opened when the first lookup runs; without one there are no answers.
    explicit AtSpiLookup(std::string displayName);

    void lookUp(Vec2 point, Handler found) override;

private:
    std::string m_displayName;
};

} // namespace zento
