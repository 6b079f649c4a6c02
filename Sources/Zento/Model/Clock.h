#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace zento {

/// Something that goes on until the object is gone.
class Timer {
public:
    Timer() = default;
    virtual ~Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
};

/// Where the model has its time from.
///
/// Threading: the main thread.
class Clock {
public:
    using Instant = std::chrono::system_clock::time_point;

    virtual ~Clock() = default;

    virtual Instant now() const = 0;

    /// Calls `tick` after every `interval`, from the main thread's event loop. A tick may drop its
    /// own timer.
    virtual std::unique_ptr<Timer>
    every(std::chrono::milliseconds interval, std::function<void()> tick) = 0;
};

/// The real time, and timers of the main thread's event loop.
class EventLoopClock final : public Clock {
public:
    Instant now() const override;
    std::unique_ptr<Timer>
    every(std::chrono::milliseconds interval, std::function<void()> tick) override;
};

} // namespace zento
