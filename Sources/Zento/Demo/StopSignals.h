#pragma once

#include <atomic>
#include <csignal>
#include <stop_token>
#include <thread>

namespace zento {

/// Turns SIGINT and SIGTERM into a stop request for as long as it lives, so that a command leaves
/// by its ordinary way and its destructors run. Only the first signal does; a second one ends the
/// process as if this object did not exist.
///
/// Threading: make it on the main thread before any other is started: threads inherit the blocked
/// signals. One thread of its own, "signals", waits for them.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    std::stop_token token() const { return m_stop.get_token(); }

    /// The signal that came, for the exit code 128 + signal; 0 while none has.
    int received() const { return m_received; }

private:
    void wait(const std::stop_token& end);

    std::stop_source m_stop;
    std::atomic<int> m_received = 0;
    sigset_t m_before{};
    std::jthread m_thread;
};

} // namespace zento
