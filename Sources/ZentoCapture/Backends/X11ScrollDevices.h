#pragma once

#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCore/Geometry.h"

#include <xcb/xinput.h>

#include <cstdint>
#include <map>
#include <vector>

namespace zento {

/// The devices that scroll smoothly: those with valuators of their own for it.
class X11ScrollDevices {
public:
    X11ScrollDevices() = default;
    explicit X11ScrollDevices(const X11Connection& connection);

    bool isEmpty() const { return m_axes.empty(); }
    bool contains(xcb_input_device_id_t device) const { return m_axes.contains(device); }

    /// Notches of a motion event, up and left positive; (0, 0) for one that does not scroll.
    Vec2 notches(const xcb_input_raw_motion_event_t& event) const;

private:
    enum class Direction : unsigned char { Horizontal, Vertical };

    struct Axis {
        unsigned valuator = 0;
        Direction direction = Direction::Vertical;
        double increment = 1; // units of a notch, down or right
    };

    std::map<xcb_input_device_id_t, std::vector<Axis>> m_axes;
};

} // namespace zento
