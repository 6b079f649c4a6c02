#include "Zento/Demo/Waiting.h"

#include "ZentoCore/Error.h"

#include <cmath>
#include <condition_variable>
#include <mutex>

namespace zento {

bool sleepUntil(SteadyTime deadline, const std::stop_token& stop)
{
    std::mutex mutex;
    std::condition_variable_any wakeUp;
    std::unique_lock lock(mutex);
    wakeUp.wait_until(lock, stop, deadline, [] { return false; });
    return !stop.stop_requested();
}

bool sleepFor(double seconds, const std::stop_token& stop)
{
    const auto duration = std::chrono::duration<double>(seconds);
    return sleepUntil(
        std::chrono::steady_clock::now()
            + std::chrono::duration_cast<std::chrono::steady_clock::duration>(duration),
        stop);
}

void waitUntil(
    const std::function<bool()>& condition,
    double seconds,
    const std::string& what,
    const std::stop_token& stop)
{
    constexpr double kPollSeconds = 0.01;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            throw Error(
                ErrorCode::kDesktopFailed,
                what + " within " + std::to_string(std::lround(seconds)) + " seconds.");
        }
        if (!sleepFor(kPollSeconds, stop)) {
            throw Error(ErrorCode::kDemoStopped, "The demo was stopped.");
        }
    }
}

} // namespace zento
