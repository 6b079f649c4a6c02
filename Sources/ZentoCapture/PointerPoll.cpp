#include "ZentoCapture/PointerPoll.h"

#include "ZentoCapture/ThreadName.h"

#include <time.h>

#include <cstdint>
#include <utility>

namespace zento {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kIntervalNanoseconds = kNanosecondsPerSecond / 120;

std::int64_t now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

void sleepUntil(std::int64_t deadline)
{
    const timespec time{
        .tv_sec = deadline / kNanosecondsPerSecond, .tv_nsec = deadline % kNanosecondsPerSecond};
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr);
}

void run(const std::stop_token& stop, const std::function<void()>& tick)
{
    nameThread("capture.poll");
    std::int64_t deadline = now();
    while (!stop.stop_requested()) {
        tick();
        const std::int64_t missed = (now() - deadline) / kIntervalNanoseconds;
        deadline += (missed + 1) * kIntervalNanoseconds;
        sleepUntil(deadline);
    }
}

} // namespace

PointerPoll::PointerPoll(std::function<void()> tick)
    : m_thread([tick = std::move(tick)](const std::stop_token& stop) { run(stop, tick); })
{
}

} // namespace zento
