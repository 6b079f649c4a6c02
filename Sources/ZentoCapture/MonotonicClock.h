#pragma once

#include <chrono>

namespace zento {

/// Seconds of CLOCK_MONOTONIC: the one clock of a recording. The X server stamps its events by it,
/// and so do PipeWire and the portals.
inline double monotonicSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace zento
