#pragma once

#include "ZentoCapture/Backends/PixelTarget.h"
#include "ZentoCapture/Backends/X11Damage.h"
#include "ZentoCapture/Backends/X11Subject.h"
#include "ZentoCapture/Backends/X11Underlay.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zento {

/// A rectangle of the root window. What no monitor shows any more keeps its last picture.
///
/// The rectangle stays where it is when monitors move, as does the place clicks are told against.
class X11ScreenSubject final : public X11Subject {
public:
    /// Throws `Error` when the rectangle lies outside the screen or the server cannot tell what
    /// changes. The connection must outlive it.
    X11ScreenSubject(
        const X11Connection& connection,
        const PixelRect& rect,
        const std::vector<xcb_window_t>& excludedWindows);

    News handle(const xcb_generic_event_t& event) override;
    bool draw(X11Frames& frames, Want want) override;
    bool isOutdated() const override
    {
        return m_mustLookForParts || (m_underlay && m_underlay->isOutdated());
    }

private:
    void selectEvents() const;
    void lookForParts();
    bool takeDamage() const;
    bool read(X11Frames& frames);
    bool readParts(X11Frames& frames);

    const X11Connection& m_connection;
    PixelRect m_rect;
    std::vector<PixelRect> m_parts; // of the rectangle: those there are to see
    bool m_isWholeScreen = false;
    bool m_mustLookForParts = true;
    bool m_mustDraw = false; // something but damage has changed the picture
    std::uint8_t m_randrEvent = 0;
    X11Damage m_damage;
    X11Pixels m_part; // while it is read
    std::optional<X11Underlay> m_underlay;
};

} // namespace zento
