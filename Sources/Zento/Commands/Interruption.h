#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace zento {

/// Turns SIGINT, SIGTERM and SIGHUP into a stop token for as long as it lives.
///
/// Make it on the main thread before any other thread is started: threads inherit that the signals
/// do not interrupt them. A second signal ends the process at once.
///
/// Threading: `token` and `requestStop` from any thread.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    std::stop_token token() const { return m_source.get_token(); }

    /// The same as a signal would do.
    void requestStop() { m_source.request_stop(); }

    /// Returns when a stop is requested or that much time has passed; without a time, only then.
    void wait(std::optional<std::chrono::duration<double>> time) const;

private:
    std::stop_source m_source;
    std::jthread m_watcher; // named "signals"
};

} // namespace zento
