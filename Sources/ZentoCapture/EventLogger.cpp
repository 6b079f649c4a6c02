#include "ZentoCapture/EventLogger.h"

#include "ZentoCapture/CaptureSpace.h"
#include "ZentoCapture/MonotonicClock.h"

#include <algorithm>
#include <string>

namespace zento {

namespace {

constexpr double kScaleWithoutDisplay = 2;

double mainDisplayScale(Desktop& desktop)
{
    const auto displays = desktop.displays();
    const auto main = std::ranges::find(displays, DisplayRole::Main, &DisplayInfo::role);
    return main == displays.end() ? kScaleWithoutDisplay : main->scale;
}

} // namespace

EventLogger::EventLogger(Desktop& desktop)
    : m_desktop(desktop)
    , m_scale(mainDisplayScale(desktop))
{
}

EventLogger::~EventLogger()
{
    stop();
}

bool EventLogger::start()
{
    m_startTime = monotonicSeconds();
    m_input = m_desktop.inputSource();
    try {
        m_input->start([this](const RawInput& input) {
            InputEvent event = inputEvent(input, {.scale = m_scale});
            event.t = monotonicSeconds() - m_startTime;
            if (input.type == RawInputType::KeyDown) {
                event.key = "kc:" + std::to_string(input.keyCode);
            }
            if (event.scroll) {
                event.scroll = input.scroll;
            }
            emit(event);
        });
    } catch (const Error&) {
        m_input.reset();
        return false;
    }
    m_poll = std::make_unique<PointerPoll>([this] {
        const Vec2 point = m_input->pointerPosition().value_or(Vec2{});
        emit(
            {.t = monotonicSeconds() - m_startTime,
             .kind = EventKind::Move,
             .pos = {point.x * m_scale, point.y * m_scale}});
    });
    return true;
}

void EventLogger::stop()
{
    m_poll.reset();
    if (m_input) {
        m_input->stop();
        m_input.reset();
    }
}

std::vector<InputEvent> EventLogger::events() const
{
    const std::lock_guard lock(m_mutex);
    return m_events;
}

void EventLogger::emit(const InputEvent& event)
{
    {
        const std::lock_guard lock(m_mutex);
        m_events.push_back(event);
    }
    if (onEvent) {
        onEvent(event);
    }
}

} // namespace zento
