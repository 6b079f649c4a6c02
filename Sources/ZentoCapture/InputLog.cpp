#include "ZentoCapture/InputLog.h"

#include <utility>

namespace zento {

std::shared_ptr<InputLog> InputLog::make(std::unique_ptr<ElementLookup> lookup)
{
    return std::shared_ptr<InputLog>(new InputLog(std::move(lookup)));
}

InputLog::InputLog(std::unique_ptr<ElementLookup> lookup)
    : m_lookup(std::move(lookup))
{
}

CaptureSpace InputLog::space() const
{
    const std::lock_guard lock(m_spaceMutex);
    return m_space;
}

void InputLog::setSpace(const CaptureSpace& space)
{
    const std::lock_guard lock(m_spaceMutex);
    m_space = space;
}

void InputLog::handle(const RawInput& input)
{
    InputEvent event = inputEvent(input, space());
    if (event.kind == EventKind::Click) {
        sampleAX(input.point, m_log.appendReturningIndex(std::move(event)));
    } else {
        m_log.append(std::move(event));
    }
}

void InputLog::move(double time, Vec2 point)
{
    m_log.append({.t = time, .kind = EventKind::Move, .pos = space().map(point)});
}

void InputLog::sampleAX(Vec2 point, std::size_t eventIndex)
{
    if (!m_lookup) {
        return;
    }
    m_lookup->lookUp(point, [weak = weak_from_this(), eventIndex](const Element& element) {
        const std::shared_ptr<InputLog> log = weak.lock();
        if (!log) {
            return;
        }
        if (std::optional<AXInfo> info = axInfo(element, log->space())) {
            log->m_log.setAX(eventIndex, *std::move(info));
        }
    });
}

} // namespace zento
