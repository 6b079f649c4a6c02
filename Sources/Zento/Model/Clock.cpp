#include "Zento/Model/Clock.h"

#include <QTimer>

#include <utility>

namespace zento {

namespace {

class EventLoopTimer final : public Timer {
public:
    EventLoopTimer(std::chrono::milliseconds interval, std::function<void()> tick)
        : m_timer(new QTimer)
    {
        QObject::connect(m_timer, &QTimer::timeout, m_timer, std::move(tick));
        m_timer->start(interval);
    }

    /// A tick may be what ends us, and what it captured must outlive it.
    ~EventLoopTimer() override
    {
        m_timer->stop();
        m_timer->deleteLater();
    }

private:
    QTimer* m_timer;
};

} // namespace

Clock::Instant EventLoopClock::now() const
{
    return std::chrono::system_clock::now();
}

std::unique_ptr<Timer>
EventLoopClock::every(std::chrono::milliseconds interval, std::function<void()> tick)
{
    return std::make_unique<EventLoopTimer>(interval, std::move(tick));
}

} // namespace zento
