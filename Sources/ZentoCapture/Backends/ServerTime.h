#pragma once

#include <cstdint>

namespace zento {

/// Seconds of CLOCK_MONOTONIC for a time stamp of the X server, which holds the low 32 bits of that
/// clock's milliseconds and wraps every 49.7 days.
///
/// `nowSeconds`: the clock at about the time of the event. The result is the fitting time nearest
/// to it, so an event may have waited for up to 24 days.
double secondsOfServerTime(std::uint32_t serverTime, double nowSeconds);

} // namespace zento
