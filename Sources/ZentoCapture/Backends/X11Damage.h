#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/X11Connection.h"

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <cstdint>

namespace zento {

/// Throws `Error` when the server does not report what changes.
void requireDamage(const X11Connection& connection);

/// What has changed on a window, with all that lies inside it. Made, all of it counts as changed.
///
/// Threading: one thread. The connection must outlive it, and `requireDamage` have passed on it.
class X11Damage {
public:
    /// On a window that is gone it never reports anything.
    X11Damage(const X11Connection& connection, xcb_window_t window);
    ~X11Damage();
    X11Damage(const X11Damage&) = delete;
    X11Damage& operator=(const X11Damage&) = delete;

    /// Whether the event says that something has changed since the last `clear` or `take`. There is
    /// one such event until then, however much changes.
    bool isReported(const xcb_generic_event_t& event) const;

    /// Forgets the changes up to now. To be called before the picture is read, so that what changes
    /// afterwards is reported anew.
    void clear() const;

    /// The same; whether they touch the rectangle (of the window).
    bool take(const PixelRect& rect) const;

private:
    const X11Connection& m_connection;
    std::uint8_t m_eventType = 0;
    xcb_damage_damage_t m_damage = XCB_NONE;
    xcb_xfixes_region_t m_region = XCB_NONE;
};

} // namespace zento
