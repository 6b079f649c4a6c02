#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/WakeFd.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/Backends/X11Grabber.h"
#include "ZentoCapture/FrameSource.h"

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <memory>
#include <string>
#include <thread>

namespace zento {

/// The pictures of a rectangle of the root window, while the server reports damage in it.
class X11FrameSource final : public FrameSource {
public:
    /// Throws `Error` when the server has no DAMAGE extension or the rectangle lies outside it.
    X11FrameSource(const std::string& displayName, const PixelRect& rect);
    ~X11FrameSource() override;

    void start(FrameHandler onFrame, EndHandler onEnd) override;
    void stop() override;

private:
    enum class Change : unsigned char { None, Changed, Lost };

    void watchDamage();
    void run();
    Change readEvents();
    bool takeDamage();
    Change deliver();
    void wait(double untilSeconds);

    X11Connection m_connection;
    PixelRect m_rect;
    X11Grabber m_grabber;
    bool m_isWholeScreen = false;
    bool m_owesPicture = true; // at the start, and after a refused frame
    std::uint8_t m_damageEvent = 0;
    xcb_damage_damage_t m_damage = 0;
    xcb_xfixes_region_t m_region = 0;
    FrameHandler m_onFrame;
    EndHandler m_onEnd;
    WakeFd m_wake;
    std::thread m_thread;
};

} // namespace zento
