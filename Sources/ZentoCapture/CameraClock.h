#pragma once

#include <optional>

namespace zento {

/// Where a camera's pictures lie in their movie, and when that begins.
///
/// The camera's own stamps say how far apart its pictures were taken, on whatever clock they lie;
/// arrivals say when that was on ours. A picture can only arrive late, so the movie's start is told
/// by the one that was least so: a first picture that a busy machine held up for 0.3 s (measured)
/// shifts nothing. Stamps that stray from the arrivals (another camera, a clock that was set) are
/// taken as beginning anew there.
///
/// Threading: used by one thread at a time.
class CameraClock {
public:
    static constexpr double kStray = 1; // seconds

    /// Seconds from the movie's start. `stamp`: the camera's, if it has one. `arrival`: seconds of
    /// CLOCK_MONOTONIC.
    double place(std::optional<double> stamp, double arrival);

    /// Of the movie, in seconds of CLOCK_MONOTONIC; nothing before the first picture. Later
    /// pictures may make it earlier.
    std::optional<double> start() const { return m_start; }

private:
    std::optional<double> m_start;
    std::optional<double> m_stampAtStart; // on the camera's clock
};

} // namespace zento
