#pragma once

namespace zento {

/// A time that was computed falls short of a picture's own by a rounding error or not, as it
/// happens: without this, a recording at the film's own rate stutters. A recording's clock ticks in
/// 17 µs.
inline constexpr double kRoundingAllowance = 1e-6; // seconds

} // namespace zento
