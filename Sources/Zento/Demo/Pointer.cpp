#include "Zento/Demo/Pointer.h"

#include "Zento/Demo/PointerPath.h"
#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCore/Error.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cmath>
#include <utility>

namespace zento {

Pointer::Pointer(const std::string& display, std::uint64_t seed)
    : m_connection(std::make_unique<XConnection>(display))
    , m_random(seed)
{
    xcb_connection_t* x = m_connection->get();
    const auto version = own(xcb_test_get_version_reply(x, xcb_test_get_version(x, 2, 2), nullptr));
    if (!version) {
        throw Error(ErrorCode::kDesktopFailed, "The display " + display + " takes no test input.");
    }
}

Pointer::~Pointer() = default;

Vec2 Pointer::position() const
{
    xcb_connection_t* x = m_connection->get();
    const auto reply =
        own(xcb_query_pointer_reply(x, xcb_query_pointer(x, m_connection->root().id), nullptr));
    return reply ? Vec2{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)}
                 : Vec2{};
}

void Pointer::moveTo(Vec2 target, double targetSize, const std::stop_token& stop)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    for (const PathPoint& point : pointerPath(position(), target, targetSize, m_random)) {
        const auto due = start
                         + std::chrono::duration_cast<Clock::duration>(
                             std::chrono::duration<double>(point.time));
        if (!sleepUntil(due, stop)) {
            return;
        }
        xcb_test_fake_input(
            m_connection->get(),
            XCB_MOTION_NOTIFY,
            0,
            XCB_CURRENT_TIME,
            m_connection->root().id,
            static_cast<std::int16_t>(std::lround(point.position.x)),
            static_cast<std::int16_t>(std::lround(point.position.y)),
            0);
        m_connection->flush();
    }
}

void Pointer::press(unsigned char button, double heldSeconds, const std::stop_token& stop)
{
    xcb_connection_t* x = m_connection->get();
    xcb_test_fake_input(x, XCB_BUTTON_PRESS, button, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    m_connection->flush();
    sleepFor(heldSeconds, stop);
    xcb_test_fake_input(x, XCB_BUTTON_RELEASE, button, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    m_connection->flush();
}

void Pointer::click(PointerButton button, const std::stop_token& stop)
{
    // A hand rests a moment on the target before it presses.
    if (sleepFor(m_random.between(0.08, 0.16), stop)) {
        press(std::to_underlying(button), m_random.between(0.07, 0.12), stop);
    }
}

void Pointer::doubleClick(const std::stop_token& stop)
{
    const auto left = std::to_underlying(PointerButton::Left);
    if (sleepFor(m_random.between(0.08, 0.16), stop)) {
        press(left, 0.04, stop);
        sleepFor(0.06, stop);
        press(left, 0.04, stop);
    }
}

void Pointer::dragTo(Vec2 target, const std::stop_token& stop)
{
    constexpr double kTargetSize = 8; // pixels: a hand that places something goes slowly
    xcb_connection_t* x = m_connection->get();
    const auto left = std::to_underlying(PointerButton::Left);
    xcb_test_fake_input(x, XCB_BUTTON_PRESS, left, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    m_connection->flush();
    moveTo(target, kTargetSize, stop);
    xcb_test_fake_input(x, XCB_BUTTON_RELEASE, left, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    m_connection->flush();
}

void Pointer::scroll(WheelDirection direction, int notches, const std::stop_token& stop)
{
    constexpr int kFlick = 4; // notches a finger turns without reaching back
    for (int i = 0; i < notches && !stop.stop_requested(); ++i) {
        const bool reachesBack = i > 0 && i % kFlick == 0;
        sleepFor(reachesBack ? m_random.between(0.22, 0.32) : m_random.between(0.05, 0.09), stop);
        press(std::to_underlying(direction), 0.004, stop);
    }
}

} // namespace zento
