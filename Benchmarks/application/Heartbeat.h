#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

namespace zento::bench {

/// Listens to the main thread's event loop: how long it was away at most.
class Heartbeat : public QObject {
public:
    Heartbeat();

    struct Pause {
        double milliseconds = 0;
        double work = 0;    // of these, the thread's own processor time
        double delayed = 0; // of these, ready to run without a core; the rest it waited for others
    };

    /// The longest pause since the last call.
    Pause takeLongest();

private:
    void beat();

    QTimer m_timer;
    std::chrono::steady_clock::time_point m_last;
    double m_lastWork = 0;
    double m_lastDelay = 0;
    Pause m_longest;
};

} // namespace zento::bench
