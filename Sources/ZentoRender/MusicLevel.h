#pragma once

#include "ZentoCore/EditPlan.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zento {

/// How much the music steps back, sample by sample of the film: the step function of the plan's
/// duck points, smoothed by a moving average over the last 0.1 s.
class DuckingCurve {
public:
    /// `titleOffset`: seconds of film before output time 0.
    DuckingCurve(std::vector<DuckPoint> points, double titleOffset);

    /// The decibels of sample 0, then of 1, and so on.
    double next();

private:
    /// The level at one sample after the other: that of the latest point at or before it.
    struct Steps {
        std::size_t next = 0; // the first point that is still to come
        double level = 0;
    };

    double advance(Steps& steps, std::int64_t sample) const;

    std::vector<DuckPoint> m_points; // ascending by time
    double m_titleOffset;
    Steps m_head; // enters the average
    Steps m_tail; // leaves it
    double m_sum = 0;
    std::int64_t m_sample = 0;
};

/// The factor of the music, sample by sample of the film: its level, ducking and fades.
class MusicLevel {
public:
    /// `duration`: of the film, in seconds.
    MusicLevel(const MusicPlan& plan, double titleOffset, double duration);

    /// Multiplies the next samples of the film's clock into `factors`. How many the music still
    /// sounds for: fewer than asked for once it has ended.
    std::size_t next(std::span<float> factors);

private:
    DuckingCurve m_ducking;
    double m_fadeIn;
    double m_fadeOut;
    double m_end;        // seconds
    double m_base;       // factor
    double m_ducked = 0; // the decibels `m_factor` was computed from
    double m_factor;
    std::int64_t m_sample = 0;
};

} // namespace zento
