#include "ZentoCapture/Backends/PortalLookup.h"

#include "ZentoCapture/Backends/AtSpiElements.h"
#include "ZentoCapture/Backends/AtSpiWorker.h"

#include <utility>

namespace zento {

namespace {

void perform(const ShownPlace& place, Vec2 point, const ElementLookup::Handler& found)
{
    const Vec2 shown{
        (point.x - place.origin.x) / place.factor, (point.y - place.origin.y) / place.factor};
    auto element = elementOfActiveWindow(place.size, shown);
    if (!element) {
        return;
    }
    Rect& frame = element->frame;
    frame = {
        place.origin.x + frame.x * place.factor,
        place.origin.y + frame.y * place.factor,
        frame.w * place.factor,
        frame.h * place.factor};
    found(*element);
}

} // namespace

void PortalLookup::Screen::set(const std::shared_ptr<PortalScreen>& screen)
{
    const std::lock_guard lock(m_mutex);
    m_screen = screen;
}

std::shared_ptr<PortalScreen> PortalLookup::Screen::get() const
{
    const std::lock_guard lock(m_mutex);
    return m_screen.lock();
}

PortalLookup::PortalLookup(std::shared_ptr<const Screen> screen)
    : m_screen(std::move(screen))
{
}

void PortalLookup::lookUp(Vec2 point, Handler found)
{
    if (const auto screen = m_screen->get()) {
        askAccessibility([place = screen->place(), point, found = std::move(found)] {
            perform(place, point, found);
        });
    }
}

} // namespace zento
