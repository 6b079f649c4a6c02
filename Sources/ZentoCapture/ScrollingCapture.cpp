#include "ZentoCapture/ScrollingCapture.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace zento::ScrollingCapture {

namespace {

constexpr double kStep = 0.6;  // of the area's height
constexpr int kLeastStep = 40; // points
constexpr int kMostNotches = 60;
constexpr int kMoreLooks = 2;      // at what seems to be the page's end
constexpr int kMostFirstLooks = 5; // at a page that never comes to rest

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

enum class Step : std::uint8_t { Taken, Last, Disturbed };

/// One run's way down the page.
class Run {
public:
    Run(const Rect& area, const Ports& ports, const std::stop_token& stop, const Shot& first)
        : m_ports(ports)
        , m_stop(stop)
        , m_scale(first.image->height() / area.h)
        , m_centre{area.center().x * m_scale, area.center().y * m_scale}
        , m_wanted(std::max(kStep * area.h, static_cast<double>(kLeastStep)) * m_scale)
        , m_stitch(first.image)
    {
    }

    /// Turns the wheel once and adds what came into view.
    Step step()
    {
        m_ports.wheel.scroll(m_notches, m_centre);
        const Step taken = m_expected ? look() : lookUntilStill();
        if (taken == Step::Taken && !m_expected) {
            const int perNotch = m_stitch.lastShift();
            m_notches = std::clamp(static_cast<int>(m_wanted / perNotch), 1, kMostNotches);
            m_expected = m_notches * perNotch;
        }
        return taken;
    }

    ScrollStitch& stitch() { return m_stitch; }

private:
    /// Nothing when a hand has moved the pointer.
    std::optional<Shot> rested()
    {
        m_ports.settle();
        if (m_stop.stop_requested() || m_ports.wheel.isGivenUp()) {
            throw Error(ErrorCode::kCancelled, "the scrolling capture was given up");
        }
        return wasMoved(m_ports.wheel, m_centre) ? std::nullopt : std::optional(m_ports.shoot());
    }

    /// A program that is busy scrolls late, which looks like the end of its page: that is believed
    /// when it has been seen again.
    Step look()
    {
        for (int again = 0;; ++again) {
            const std::optional<Shot> shot = rested();
            if (!shot) {
                return Step::Disturbed;
            }
            ScrollStitch longer = m_stitch;
            const auto verdict = longer.add(*shot->image, m_expected);
            if (verdict == ScrollStitch::Verdict::Continue || again == kMoreLooks) {
                m_stitch = std::move(longer);
                return verdict == ScrollStitch::Verdict::Continue ? Step::Taken : Step::Last;
            }
        }
    }

    /// The first step is measured whole, as all others are reckoned from it.
    Step lookUntilStill()
    {
        const ScrollStitch before = m_stitch;
        Step taken = look();
        int last = 0;
        for (int more = 0; more < kMostFirstLooks && taken == Step::Taken; ++more) {
            if (m_stitch.lastShift() == last) {
                break;
            }
            last = m_stitch.lastShift();
            m_stitch = before;
            taken = look();
        }
        return taken;
    }

    const Ports& m_ports;
    const std::stop_token& m_stop;
    double m_scale;
    Vec2 m_centre;
    double m_wanted; // pixels a step
    int m_notches = 1;
    std::optional<int> m_expected; // pixels; what a notch moves is not known at first
    ScrollStitch m_stitch;
};

} // namespace

ScrolledShot run(const Rect& area, const Ports& ports, const std::stop_token& stop)
{
    PointerReturns pointer(ports.wheel);
    const Shot first = ports.shoot();
    Run run(area, ports, stop, first);
    Step step = Step::Taken;
    while (step == Step::Taken) {
        step = run.step();
    }
    if (step == Step::Disturbed) {
        pointer.leave();
        run.stitch().cutShort();
    }
    return {
        .shot =
            {.image = std::make_shared<const Canvas>(run.stitch().compose()), .scale = first.scale},
        .seams = run.stitch().seams()};
}

} // namespace zento::ScrollingCapture
