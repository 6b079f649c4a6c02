#pragma once

#include "ZentoCore/EditPlan.h"

#include <vector>

namespace zento {

/// A continuous, invertible map between source and output time.
///
/// Where two segments touch, the rate eases through the mean of both. Knot i says that source time
/// `src[i]` is shown at output time `out[i]`; between knots the map is linear. A cut is two
/// neighbouring knots of one output time.
///
/// Threading: immutable after construction; share it freely.
class RemapCurve {
public:
    /// The ramp every user of the curve passes, in output seconds across a seam.
    static constexpr double kRampDuration = 0.35;

    RemapCurve() = default;

    /// Segments in any order, with finite bounds and positive speeds.
    explicit RemapCurve(std::vector<SpeedSegment> segments, double rampDuration = kRampDuration);

    const std::vector<double>& src() const { return m_src; }
    const std::vector<double>& out() const { return m_out; }
    double outputDuration() const { return m_outputDuration; } // seconds

    /// At a cut this gives its far side. 0 for an empty curve; clamped at both ends.
    double sourceTime(double outputTime) const;

    /// At a cut this gives its near side. 0 for an empty curve; clamped at both ends.
    double outputTime(double sourceTime) const;

    /// Whether a source time survives into the film. A time equal to the near knot of a cut does
    /// not.
    bool contains(double sourceTime) const;

private:
    std::vector<double> m_src; // never decreasing
    std::vector<double> m_out; // never decreasing
    double m_outputDuration = 0;
};

} // namespace zento
