#include "ZentoCore/EditPlan.h"

#include <algorithm>

namespace zento {

namespace {

double outputLength(const SpeedSegment& segment)
{
    return (segment.sourceEnd - segment.sourceStart) / segment.speed;
}

} // namespace

double WebcamPlan::roundnessForShape(std::string_view shape)
{
    if (shape == "rounded") {
        return 0.22;
    }
    return shape == "square" ? 0.08 : 0.5;
}

double EditPlan::outputTime(double sourceTime) const
{
    double elapsed = 0;
    for (const SpeedSegment& segment : timeRemap) {
        if (sourceTime < segment.sourceStart) {
            return elapsed;
        }
        if (sourceTime <= segment.sourceEnd) {
            return elapsed + (sourceTime - segment.sourceStart) / segment.speed;
        }
        elapsed += outputLength(segment);
    }
    return elapsed;
}

double EditPlan::sourceTime(double outputTime) const
{
    double elapsed = 0;
    for (const SpeedSegment& segment : timeRemap) {
        const double length = outputLength(segment);
        // By value, not by index: a segment equal to the last one ends the walk as well.
        if (elapsed + length >= outputTime || segment == timeRemap.back()) {
            const double local = std::min(std::max(outputTime - elapsed, 0.0), length);
            return std::min(segment.sourceStart + segment.speed * local, segment.sourceEnd);
        }
        elapsed += length;
    }
    return 0;
}

} // namespace zento
