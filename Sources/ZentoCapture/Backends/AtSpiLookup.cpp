#include "ZentoCapture/Backends/AtSpiLookup.h"

#include "ZentoCapture/Backends/AtSpiElements.h"
#include "ZentoCapture/Backends/AtSpiWorker.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/Backends/X11Windows.h"

#include <utility>

namespace zento {

namespace {

void perform(const std::string& displayName, Vec2 point, const ElementLookup::Handler& found)
{
    const X11Connection connection(displayName);
    const double scale = displayScale(connection);
    const Vec2 pixel{point.x * scale, point.y * scale};
    const auto window = windowUnder(connection, pixel);
    auto element = window ? elementOfProcess(window->processID, window->rect, pixel) : std::nullopt;
    if (!element) {
        return;
    }
    Rect& frame = element->frame;
    frame = {frame.x / scale, frame.y / scale, frame.w / scale, frame.h / scale};
    found(*element);
}

} // namespace

AtSpiLookup::AtSpiLookup(std::string displayName)
    : m_displayName(std::move(displayName))
{
}

void AtSpiLookup::lookUp(Vec2 point, Handler found)
{
    askAccessibility([displayName = m_displayName, point, found = std::move(found)] {
        perform(displayName, point, found);
    });
}

} // namespace zento
