#pragma once

#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/InputSource.h"
#include "ZentoCapture/PointerPoll.h"
#include "ZentoCore/InputEvent.h"

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace zento {

/// A plain log of what the user does, apart from any recording: no capture space, no elements, no
/// labels.
///
/// `t` is seconds since `start`, by arrival; `pos` is global pixels; `key` is "kc:" and the virtual
/// key code; `scroll` is in points.
///
/// Threading: `start`, `stop` and `events` from one thread.
class EventLogger {
public:
    /// The scale is that of the main display, 2 without one. The desktop must outlive `start`.
    explicit EventLogger(Desktop& desktop);
    ~EventLogger();
    EventLogger(const EventLogger&) = delete;
    EventLogger& operator=(const EventLogger&) = delete;

    /// Called for every event on the thread it came from. Set before `start`.
    std::function<void(const InputEvent&)> onEvent;

    /// False if this desktop lets nobody listen.
    bool start();
    void stop();

    std::vector<InputEvent> events() const;

private:
    void emit(const InputEvent& event);

    Desktop& m_desktop;
    const double m_scale;
    double m_startTime = 0;
    mutable std::mutex m_mutex;
    std::vector<InputEvent> m_events;
    std::unique_ptr<InputSource> m_input;
    std::unique_ptr<PointerPoll> m_poll;
};

} // namespace zento
