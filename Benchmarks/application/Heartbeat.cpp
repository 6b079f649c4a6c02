#include "Heartbeat.h"

#include "ProcessorTime.h"

#include <fstream>
#include <utility>

namespace zento::bench {

namespace {

/// Time this thread was ready to run and had no core, milliseconds.
double threadDelay()
{
    std::ifstream file("/proc/thread-self/schedstat");
    double ran = 0;
    double waited = 0;
    file >> ran >> waited;
    return waited / 1e6;
}

} // namespace

Heartbeat::Heartbeat()
    : m_last(std::chrono::steady_clock::now())
    , m_lastWork(threadSeconds() * 1e3)
    , m_lastDelay(threadDelay())
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &Heartbeat::beat);
    m_timer.start();
}

void Heartbeat::beat()
{
    const auto now = std::chrono::steady_clock::now();
    const double work = threadSeconds() * 1e3;
    const std::chrono::duration<double, std::milli> away = now - std::exchange(m_last, now);
    const double own = work - std::exchange(m_lastWork, work);
    const double delay = threadDelay();
    const double delayed = delay - std::exchange(m_lastDelay, delay);
    if (away.count() > m_longest.milliseconds) {
        m_longest = {away.count(), own, delayed};
    }
}

Heartbeat::Pause Heartbeat::takeLongest()
{
    beat();
    return std::exchange(m_longest, {});
}

} // namespace zento::bench
