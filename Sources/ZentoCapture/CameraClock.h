#pragma once

#include <optional>

namespace zento {

/// Where a camera's pictures lie in their movie.
///
/// The first one's arrival is the movie's start. From there the camera's own stamps count, for they
/// do not jitter as arrivals do; on whatever clock they lie. Stamps that stray from the arrivals
/// (another camera, a clock that was set) are taken as beginning anew there.
///
/// Threading: used by one thread at a time.
class CameraClock {
public:
    static constexpr double kStray = 0.1; // seconds: three pictures

    /// Seconds from the movie's start. `stamp`: the camera's, if it has one. `arrival`: seconds of
    /// CLOCK_MONOTONIC.
    double place(std::optional<double> stamp, double arrival);

private:
    std::optional<double> m_start;
    std::optional<double> m_stampAtStart; // on the camera's clock
};

} // namespace zento
