#pragma once

#include "ZentoCapture/Backends/PortalScreen.h"
#include "ZentoCapture/ElementLookup.h"

#include <memory>
#include <mutex>

namespace zento {

/// Elements by the accessibility bus where nobody is told where a window stands.
///
/// Known is only this: the stream of a window begins at its corner, and a window of the monitor's
/// size covers the monitor. So the element is one of the window that has the keyboard, which a
/// click gives it, and only if that has the size of what is shown. All others have none.
class PortalLookup final : public ElementLookup {
public:
    /// What has been chosen to be shown, which is not known yet when the lookup is made.
    ///
    /// Threading: safe.
    class Screen {
    public:
        void set(const std::shared_ptr<PortalScreen>& screen);
        std::shared_ptr<PortalScreen> get() const;

    private:
        mutable std::mutex m_mutex;
        std::weak_ptr<PortalScreen> m_screen;
    };

    explicit PortalLookup(std::shared_ptr<const Screen> screen);

    void lookUp(Vec2 point, Handler found) override;

private:
    std::shared_ptr<const Screen> m_screen;
};

} // namespace zento
