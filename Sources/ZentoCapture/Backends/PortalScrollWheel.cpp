#include "ZentoCapture/Backends/PortalScrollWheel.h"

#include "ZentoCapture/MonotonicClock.h"

#include <chrono>
#include <cmath>
#include <thread>
#include <utility>

namespace zento {

namespace {

constexpr std::int64_t kEscape = 53; // as a virtual key code
constexpr double kLongestWay = 0.3;  // seconds, until a picture shows the pointer there
constexpr int kMostSteps = 3;
constexpr std::chrono::milliseconds kLook{5};

} // namespace

PortalScrollWheel::PortalScrollWheel(
    std::shared_ptr<const PortalScreen> screen,
    std::shared_ptr<const PointerTrack> pointer,
    std::unique_ptr<InputDevices> devices)
    : m_screen(std::move(screen))
    , m_pointer(std::move(pointer))
    , m_devices(std::move(devices))
{
    // A desktop without a mouse has a pointer from here on only, and its windows take a moment to
    // learn of it: they are told before the first turn of the wheel needs them.
    nudge();
}

std::optional<Vec2> PortalScrollWheel::pointer()
{
    const auto point = m_pointer->newest();
    const double scale = m_screen->scale();
    return point ? std::optional(Vec2{point->x * scale, point->y * scale}) : std::nullopt;
}

/// Desktops disagree whether a place is told in points or in pixels of the stream, so what is left
/// of the way after the first step is gone by steps, which all of them take in points.
void PortalScrollWheel::movePointer(Vec2 pixel)
{
    const double scale = m_screen->scale();
    const auto place = pointer();
    if (place && std::hypot(place->x - pixel.x, place->y - pixel.y) <= scale) {
        // Not to the same place: the picture from before would be taken for one after it. But a
        // window that came under a still pointer has it only once it moves.
        nudge();
        return;
    }
    const Rect bounds = m_screen->bounds();
    m_screen->session().movePointer({pixel.x / scale - bounds.x, pixel.y / scale - bounds.y});
    for (int step = 0; step < kMostSteps; ++step) {
        const auto way = wayTo(pixel);
        if (!way) {
            return;
        }
        m_screen->session().movePointerBy({way->x / scale, way->y / scale});
    }
}

/// Moves it, and leaves it where it was; at the right edge a point beside that.
void PortalScrollWheel::nudge()
{
    m_screen->session().movePointerBy({1, 0});
    m_screen->session().movePointerBy({-1, 0});
}

/// What is left of it, in pixels, once the pictures show the pointer at rest; nothing if it is
/// there or is not shown.
std::optional<Vec2> PortalScrollWheel::wayTo(Vec2 pixel)
{
    const double scale = m_screen->scale();
    std::optional<Vec2> way;
    for (const double end = monotonicSeconds() + kLongestWay; monotonicSeconds() < end;) {
        const auto place = pointer();
        way = place ? std::optional(Vec2{pixel.x - place->x, pixel.y - place->y}) : std::nullopt;
        if (way && std::hypot(way->x, way->y) <= scale) {
            return {};
        }
        std::this_thread::sleep_for(kLook);
    }
    return way;
}

bool PortalScrollWheel::isGivenUp()
{
    if (m_devices) {
        m_devices->read([this](const RawInput& input) {
            m_isGivenUp =
                m_isGivenUp || (input.type == RawInputType::KeyDown && input.keyCode == kEscape);
        });
    }
    return m_isGivenUp;
}

void PortalScrollWheel::scroll(int notches, Vec2 pixel)
{
    movePointer(pixel);
    m_screen->session().turnWheel(notches);
}

} // namespace zento
