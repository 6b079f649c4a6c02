#include "ZentoCapture/ScrollingCapture.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

namespace zento::ScrollingCapture {

namespace {

constexpr double kStep = 0.6;  // of the area's height
constexpr int kLeastStep = 40; // points
constexpr int kMostNotches = 60;

class PointerReturns {
public:
    explicit PointerReturns(ScrollWheel& wheel)
        : m_wheel(wheel)
        , m_place(wheel.pointer())
    {
    }
    ~PointerReturns()
    {
        if (m_place) {
            m_wheel.movePointer(*m_place);
        }
    }
    PointerReturns(const PointerReturns&) = delete;
    PointerReturns& operator=(const PointerReturns&) = delete;

    void leave() { m_place.reset(); } // where it is

private:
    ScrollWheel& m_wheel;
    std::optional<Vec2> m_place;
};

/// By the user's own hand.
bool wasMoved(ScrollWheel& wheel, Vec2 from)
{
    constexpr double kHand = 4; // pixels
    const std::optional<Vec2> place = wheel.pointer();
    return place && std::hypot(place->x - from.x, place->y - from.y) > kHand;
}

} // namespace

ScrolledShot run(const Rect& area, const Ports& ports, const std::stop_token& stop)
{
    PointerReturns pointer(ports.wheel);
    const Shot first = ports.shoot();
    const double scale = first.image->height() / area.h;
    const Vec2 centre{area.center().x * scale, area.center().y * scale};
    const double wanted = std::max(kStep * area.h, static_cast<double>(kLeastStep)) * scale;
    ScrollStitch stitch(first.image);
    int notches = 1;
    std::optional<int> expected; // what a notch moves is not known yet
    for (;;) {
        ports.wheel.scroll(notches, centre);
        ports.settle();
        if (stop.stop_requested() || ports.wheel.isGivenUp()) {
            throw Error(ErrorCode::kCancelled, "the scrolling capture was given up");
        }
        if (wasMoved(ports.wheel, centre)) {
            pointer.leave();
            stitch.cutShort();
            break;
        }
        const Shot next = ports.shoot();
        if (stitch.add(*next.image, expected) == ScrollStitch::Verdict::Ended) {
            break;
        }
        if (!expected) {
            const int perNotch = stitch.lastShift();
            notches = std::clamp(static_cast<int>(wanted / perNotch), 1, kMostNotches);
            expected = notches * perNotch;
        }
    }
    return {
        .shot = {.image = std::make_shared<const Canvas>(stitch.compose()), .scale = first.scale},
        .seams = stitch.seams()};
}

} // namespace zento::ScrollingCapture
