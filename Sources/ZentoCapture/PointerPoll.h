#pragma once

#include <functional>
#include <thread>

namespace zento {

/// Calls a function 120 times a second.
///
/// The deadlines are absolute, so the rate holds however long a call takes; ticks that could not be
/// met are left out.
///
/// Threading: the function runs on the poll's own thread "capture.poll", from the constructor to
/// the end of the destructor. It must not throw.
class PointerPoll {
public:
    static constexpr double kInterval = 1.0 / 120; // seconds

    explicit PointerPoll(std::function<void()> tick);

private:
    std::jthread m_thread;
};

} // namespace zento
