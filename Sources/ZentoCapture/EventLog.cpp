#include "ZentoCapture/EventLog.h"

#include <algorithm>
#include <utility>

namespace zento {

void EventLog::append(InputEvent event)
{
    appendReturningIndex(std::move(event));
}

std::size_t EventLog::appendReturningIndex(InputEvent event)
{
    const std::lock_guard lock(m_mutex);
    m_events.push_back(std::move(event));
    return m_events.size() - 1;
}

void EventLog::setAX(std::size_t index, AXInfo info)
{
    const std::lock_guard lock(m_mutex);
    if (index < m_events.size()) {
        m_events[index].ax = info;
    }
    if (index < m_toldCount) {
        m_found.push_back({index, std::move(info)});
    }
}

EventNews EventLog::takeNews()
{
    const std::lock_guard lock(m_mutex);
    const auto first = m_events.begin() + static_cast<std::ptrdiff_t>(m_toldCount);
    m_toldCount = m_events.size();
    return {.events = {first, m_events.end()}, .found = std::exchange(m_found, {})};
}

std::vector<InputEvent> EventLog::finished(double epoch) const
{
    std::vector<InputEvent> events;
    {
        const std::lock_guard lock(m_mutex);
        events = m_events;
    }
    for (InputEvent& event : events) {
        event.t -= epoch;
    }
    std::erase_if(events, [](const InputEvent& event) { return event.t < 0; });
    std::ranges::stable_sort(events, {}, &InputEvent::t);
    return events;
}

} // namespace zento
