#pragma once

#include "ZentoCore/Analyses.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zento::EditPlanner {

/// A stretch of source time, in seconds.
struct TimeRange {
    double start = 0;
    double end = 0;
    bool operator==(const TimeRange&) const = default;
};

/// The seconds of speech protection on both sides of a transcript segment.
inline constexpr double kSpeechPad = 0.25;

/// Where somebody speaks: each segment widened by `pad` seconds on both sides, sorted, with ranges
/// that touch or overlap merged. A start may be negative.
std::vector<TimeRange> speechRanges(std::span<const TranscriptSegment> transcript, double pad);

/// Takes protected speech out of ranges. Costs the logarithm of all speech plus the speech inside
/// the range.
///
/// `speech` is what `speechRanges` gave; its owner keeps it alive.
class SpeechProtection {
public:
    explicit SpeechProtection(std::span<const TimeRange> speech);

    /// What is left of `range`, in order; nothing of a range that is empty.
    std::vector<TimeRange> unprotected(TimeRange range) const;

private:
    std::span<const TimeRange> m_speech;
    std::vector<double> m_latestEnd; // the largest end of the ranges up to each one
};

} // namespace zento::EditPlanner
