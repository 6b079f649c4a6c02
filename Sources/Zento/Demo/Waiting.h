#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>

namespace zento {

using SteadyTime = std::chrono::steady_clock::time_point;

/// Sleeps until `deadline`; wakes at once, and returns false, when a stop is requested.
bool sleepUntil(SteadyTime deadline, const std::stop_token& stop);

/// As `sleepUntil`, `seconds` from now.
bool sleepFor(double seconds, const std::stop_token& stop);

/// Asks `condition` every few milliseconds until it holds. Throws `Error` kDesktopFailed with the
/// sentence "{what} within {seconds} seconds." when it still does not, kDemoStopped on a stop
/// request.
void waitUntil(
    const std::function<bool()>& condition,
    double seconds,
    const std::string& what,
    const std::stop_token& stop);

} // namespace zento
