#include "Zento/Demo/StopSignals.h"

#include "Zento/Demo/Waiting.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>

namespace zento {

namespace {

sigset_t stopSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

StopSignals::StopSignals()
{
    const sigset_t set = stopSignals();
    pthread_sigmask(SIG_BLOCK, &set, &m_before);
    m_thread = std::jthread([this](const std::stop_token& end) { wait(end); });
    pthread_setname_np(m_thread.native_handle(), "signals");
}

StopSignals::~StopSignals()
{
    m_thread.request_stop();
    m_thread.join();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void StopSignals::wait(const std::stop_token& end)
{
    constexpr timespec kLook{.tv_sec = 0, .tv_nsec = 50'000'000}; // bounds the destructor's wait
    const sigset_t set = stopSignals();
    while (!end.stop_requested()) {
        const int signal = sigtimedwait(&set, nullptr, &kLook);
        if (signal > 0) {
            m_received = signal;
            m_stop.request_stop();
            // A second signal, blocked everywhere else, finds its default action here.
            pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
            sleepUntil(SteadyTime::max(), end);
        }
    }
}

} // namespace zento
