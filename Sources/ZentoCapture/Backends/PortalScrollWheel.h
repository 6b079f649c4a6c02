#pragma once

#include "ZentoCapture/Backends/InputDevices.h"
#include "ZentoCapture/Backends/PortalScreen.h"
#include "ZentoCapture/PointerTrack.h"
#include "ZentoCapture/ScrollWheel.h"

#include <memory>

namespace zento {

/// The wheel of a desktop whose user has lent the pointer. Where the pointer is comes with the
/// pictures of the monitor; Escape is seen only where the devices may be read.
class PortalScrollWheel final : public ScrollWheel {
public:
    /// `screen`: with a hand on the pointer. `pointer`: what it feeds. `devices` may be null.
    PortalScrollWheel(
        std::shared_ptr<const PortalScreen> screen,
        std::shared_ptr<const PointerTrack> pointer,
        std::unique_ptr<InputDevices> devices);

    std::optional<Vec2> pointer() override;
    void movePointer(Vec2 pixel) override;
    bool isGivenUp() override;
    void scroll(int notches, Vec2 pixel) override;

private:
    void nudge();
    std::optional<Vec2> wayTo(Vec2 pixel);

    std::shared_ptr<const PortalScreen> m_screen;
    std::shared_ptr<const PointerTrack> m_pointer;
    std::unique_ptr<InputDevices> m_devices;
    bool m_isGivenUp = false;
};

} // namespace zento
