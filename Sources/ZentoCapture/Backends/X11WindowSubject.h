#pragma once

#include "ZentoCapture/Backends/FittedPicture.h"
#include "ZentoCapture/Backends/X11Damage.h"
#include "ZentoCapture/Backends/X11Redirection.h"
#include "ZentoCapture/Backends/X11Subject.h"
#include "ZentoCapture/Backends/X11Windows.h"
#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <optional>

namespace zento {

/// One window by itself, whatever covers it, scaled into a frame of a fixed size.
///
/// A window that is minimised, closed or on another desktop has no picture: the last one stays. Its
/// top-level window changes with the window manager and is looked for anew. All that happens behind
/// our back: a request to a window that has just gone is refused, which says nothing; the event
/// that tells what became of it is on its way.
class X11WindowSubject final : public X11Subject {
public:
    /// `recorded`: the window's size in pixels that the frame was laid out for. Throws `Error`:
    /// kWindowGone, or kNoDisplay for a server that lacks what it takes. The connection must
    /// outlive it.
    X11WindowSubject(const X11Connection& connection, xcb_window_t window, Vec2 recorded);
    ~X11WindowSubject() override;

    News handle(const xcb_generic_event_t& event) override;
    bool draw(X11Frames& frames, Want want) override;
    bool isOutdated() const override { return m_mustPlace; }

private:
    bool place();
    void attach(xcb_window_t topLevel);
    void detach();
    void drawScaledInto(X11Frames& frames, double scale);
    void drawUnscaledInto(X11Frames& frames);

    const X11Connection& m_connection;
    xcb_window_t m_window;
    Vec2 m_recorded;
    xcb_window_t m_topLevel = XCB_WINDOW_NONE;
    bool m_mustPlace = true;
    X11Placement m_placement;
    X11WindowPixmap m_pixmap;
    std::optional<X11Damage> m_damage;
    X11Pixels m_source; // the window's own picture
    FittedPicture m_fitted;
};

} // namespace zento
