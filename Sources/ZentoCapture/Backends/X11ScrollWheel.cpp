#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/Backends/X11Keyboard.h"
#include "ZentoCapture/ScrollWheel.h"
#include "ZentoCore/Error.h"

#include <xcb/xtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace zento {

namespace {

constexpr std::uint8_t kWheelDown = 5; // the button
constexpr std::uint8_t kSent = 0x80;   // of an event that a program made
constexpr std::int64_t kEscape = 53;   // as a virtual key code

class X11ScrollWheel final : public ScrollWheel {
public:
    explicit X11ScrollWheel(const std::string& displayName)
        : m_connection(displayName)
    {
        const XcbPtr<xcb_test_get_version_reply_t> version(xcb_test_get_version_reply(
            m_connection.get(), xcb_test_get_version(m_connection.get(), 2, 2), nullptr));
        if (!version) {
            throw Error(ErrorCode::kNoInput, "this display does not let programs scroll");
        }
        grabEscape(displayName);
    }

    std::optional<Vec2> pointer() override
    {
        const XcbPtr<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
            m_connection.get(),
            xcb_query_pointer(m_connection.get(), m_connection.root()),
            nullptr));
        if (!reply) {
            return std::nullopt;
        }
        return Vec2{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
    }

    bool isGivenUp() override
    {
        while (const auto event = m_connection.nextEvent()) {
            m_isGivenUp = m_isGivenUp || (event->response_type & ~kSent) == XCB_KEY_PRESS;
        }
        return m_isGivenUp;
    }

    void movePointer(Vec2 pixel) override
    {
        fake(
            XCB_MOTION_NOTIFY,
            0,
            static_cast<std::int16_t>(std::lround(pixel.x)),
            static_cast<std::int16_t>(std::lround(pixel.y)));
        xcb_flush(m_connection.get());
    }

    void scroll(int notches, Vec2 pixel) override
    {
        movePointer(pixel);
        for (int i = 0; i < notches; ++i) {
            fake(XCB_BUTTON_PRESS, kWheelDown, 0, 0);
            fake(XCB_BUTTON_RELEASE, kWheelDown, 0, 0);
        }
        xcb_flush(m_connection.get());
    }

private:
    /// Another program may have it; then it is not ours to see.
    void grabEscape(const std::string& displayName)
    {
        const auto& codes = X11Keyboard::read(displayName).virtualKeyCodes;
        for (std::size_t code = 0; code < codes.size(); ++code) {
            if (codes[code] == kEscape) {
                xcb_grab_key(
                    m_connection.get(),
                    0,
                    m_connection.root(),
                    XCB_MOD_MASK_ANY,
                    static_cast<xcb_keycode_t>(code),
                    XCB_GRAB_MODE_ASYNC,
                    XCB_GRAB_MODE_ASYNC);
            }
        }
        xcb_flush(m_connection.get());
    }

    void fake(std::uint8_t type, std::uint8_t detail, std::int16_t x, std::int16_t y)
    {
        xcb_test_fake_input(
            m_connection.get(), type, detail, XCB_CURRENT_TIME, m_connection.root(), x, y, 0);
    }

    X11Connection m_connection;
    bool m_isGivenUp = false;
};

} // namespace

std::unique_ptr<ScrollWheel> openScrollWheel(const std::string& displayName)
{
    return std::make_unique<X11ScrollWheel>(displayName);
}

} // namespace zento
