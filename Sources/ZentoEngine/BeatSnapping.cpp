#include "ZentoEngine/BeatSnapping.h"

#include "ZentoCore/RemapCurve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

namespace zento::EditPlanner {

namespace {

constexpr double kShortestPeriod = 0.2; // seconds, exclusive
constexpr double kSeam = 1e-9;          // source seconds
constexpr double kSlowest = 0.9;
constexpr double kFastest = 1.12;

/// The number of leading segments that follow one another without a cut.
std::size_t contiguousCount(std::span<const SpeedSegment> segments)
{
    std::size_t count = 1;
    while (count < segments.size()
           && !(std::abs(segments[count - 1].sourceEnd - segments[count].sourceStart) > kSeam)) {
        ++count;
    }
    return count;
}

/// What to multiply the speed of a stretch by that begins at output time `elapsed` and lasts
/// `duration` there.
double snapFactor(double elapsed, double duration, double period, double tolerance)
{
    const double idealEnd = elapsed + duration;
    const double beat = period * std::round(idealEnd / period);
    const double target = beat - elapsed;
    if (std::abs(beat - idealEnd) <= tolerance && duration * 0.5 < target) {
        return std::clamp(duration / target, kSlowest, kFastest);
    }
    return 1;
}

} // namespace

std::vector<SpeedSegment>
snapToBeats(std::vector<SpeedSegment> segments, double period, double tolerance)
{
    if (!(period > kShortestPeriod)) {
        return segments;
    }
    double elapsed = 0; // output time at which the stretch begins
    for (std::size_t begin = 0; begin < segments.size();) {
        const auto rest = std::span(segments).subspan(begin);
        const auto run = rest.first(contiguousCount(rest));
        const double duration = RemapCurve({run.begin(), run.end()}).outputDuration();
        const double factor = snapFactor(elapsed, duration, period, tolerance);
        for (SpeedSegment& segment : run) {
            segment.speed *= factor;
        }
        elapsed += duration / factor;
        begin += run.size();
    }
    return segments;
}

} // namespace zento::EditPlanner
