#include "Zento/Commands/Interruption.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>

namespace zento {

namespace {

sigset_t watchedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, number);
    }
    return signals;
}

/// Waits for one signal, or for the end of the thread.
bool awaitSignal(int signals, const std::stop_token& end)
{
    const int wake = ::eventfd(0, EFD_CLOEXEC);
    const std::stop_callback onEnd(end, [wake] {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(wake, &one, sizeof(one));
    });
    std::array<pollfd, 2> descriptors{{{signals, POLLIN, 0}, {wake, POLLIN, 0}}};
    while (!end.stop_requested() && (descriptors[0].revents & POLLIN) == 0) {
        ::poll(descriptors.data(), descriptors.size(), -1);
    }
    ::close(wake);
    return (descriptors[0].revents & POLLIN) != 0;
}

} // namespace

Interruption::Interruption()
{
    const sigset_t signals = watchedSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_watcher = std::jthread([source = m_source](const std::stop_token& end) mutable {
        pthread_setname_np(pthread_self(), "signals");
        const sigset_t watched = watchedSignals();
        const int descriptor = ::signalfd(-1, &watched, SFD_CLOEXEC);
        if (awaitSignal(descriptor, end)) {
            // Taken off the queue, so that only another one can end the process.
            signalfd_siginfo info{};
            [[maybe_unused]] const auto size = ::read(descriptor, &info, sizeof(info));
            source.request_stop();
            pthread_sigmask(SIG_UNBLOCK, &watched, nullptr);
        }
        ::close(descriptor);
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any().wait(lock, end, [] { return false; });
    });
}

Interruption::~Interruption()
{
    m_watcher.request_stop();
    m_watcher.join();
    const sigset_t signals = watchedSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void Interruption::wait(std::optional<std::chrono::duration<double>> time) const
{
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    const auto isStopped = [this] { return m_source.stop_requested(); };
    if (time) {
        const auto end = std::chrono::steady_clock::now()
                         + std::chrono::duration_cast<std::chrono::steady_clock::duration>(*time);
        never.wait_until(lock, token(), end, isStopped);
    } else {
        never.wait(lock, token(), isStopped);
    }
}

} // namespace zento
