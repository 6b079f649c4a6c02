#pragma once

#include "ZentoCapture/ElementLookup.h"

#include <string>

namespace zento {

/// Elements by the accessibility bus, on an X11 desktop: the application is the one whose window
/// lies under the point.
///
/// libatspi keeps its state per process and is not thread-safe, so all lookups of a process share
/// one thread, "capture.atspi", which lives as long as the process. An application that does not
/// answer costs its lookup and delays those behind it, and nothing else.
class AtSpiLookup final : public ElementLookup {
public:
    /// The display is opened when the first lookup runs; without one there are no answers.
    explicit AtSpiLookup(std::string displayName);

    void lookUp(Vec2 point, Handler found) override;

private:
    std::string m_displayName;
};

} // namespace zento
