#include "ZentoEngine/TimeRemapConstruction.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zento::EditPlanner {

namespace {

// Seconds of source time.
constexpr double kLeadIn = 0.9;
constexpr double kLeadOut = 1.3;
constexpr double kSpeechLeadOut = 0.4;
constexpr double kTypingHead = 0.15; // the first letters appear at normal speed
constexpr double kTypingTail = 0.1;
constexpr double kShortestFastPiece = 0.2; // exclusive
constexpr double kShortestCut = 0.6;
constexpr double kShortestSegment = 1e-6;
constexpr double kSeam = 1e-6;

struct FastPiece {
    double start = 0;
    double end = 0;
    double speed = 1;
};

/// From the first to the last action, with room around them; speech may widen it at both ends.
TimeRange
keptSpan(std::span<const Moment> moments, double duration, std::span<const TimeRange> speech)
{
    const double lastEnd = std::ranges::max_element(moments, {}, &Moment::end)->end;
    double start = std::max(moments.front().start - kLeadIn, 0.0);
    double end = std::min(lastEnd + kLeadOut, duration);
    if (!speech.empty()) {
        start = std::max(std::min(speech.front().start, start), 0.0);
        end = std::min(std::max(end, speech.back().end + kSpeechLeadOut), duration);
    }
    if (start > end) {
        throw Error(
            ErrorCode::kUndecodable,
            "the recording's first action lies after its end, so there is no film to plan");
    }
    return {start, end};
}

std::vector<FastPiece> fastPieces(
    std::span<const Moment> moments, const PlanConfig& config, const SpeechProtection& protection)
{
    std::vector<FastPiece> pieces;
    const auto add = [&](TimeRange range, double speed) {
        for (const TimeRange& piece : protection.unprotected(range)) {
            if (piece.end - piece.start > kShortestFastPiece) {
                pieces.push_back({piece.start, piece.end, speed});
            }
        }
    };
    for (const Moment& moment : moments) {
        if (moment.kind == Moment::Kind::Typing) {
            add({moment.start + kTypingHead, moment.end - kTypingTail}, config.typingSpeed);
        } else if (moment.kind == Moment::Kind::Scroll) {
            add({moment.start, moment.end}, config.scrollSpeed);
        }
    }
    std::ranges::stable_sort(pieces, {}, &FastPiece::start);
    return pieces;
}

std::vector<TimeRange> cutRanges(
    std::span<const Moment> moments, const PlanConfig& config, const SpeechProtection& protection)
{
    const double gapNeed = config.idleThreshold + config.preHandle + config.postHandle;
    std::vector<TimeRange> cuts;
    double cursor = moments.front().start;
    for (const Moment& moment : moments) {
        if (gapNeed < moment.start - cursor) {
            const TimeRange gap = {cursor + config.postHandle, moment.start - config.preHandle};
            for (const TimeRange& piece : protection.unprotected(gap)) {
                if (piece.end - piece.start >= kShortestCut) {
                    cuts.push_back(piece);
                }
            }
        }
        cursor = std::max(cursor, moment.end);
    }
    std::ranges::stable_sort(cuts, {}, &TimeRange::start);
    return cuts;
}

/// Every time at which the speed may change, ascending, without duplicates, inside the span.
std::vector<double>
boundaries(TimeRange span, std::span<const TimeRange> cuts, std::span<const FastPiece> pieces)
{
    std::vector<double> times = {span.start, span.end};
    for (const TimeRange& cut : cuts) {
        times.push_back(cut.start);
        times.push_back(cut.end);
    }
    for (const FastPiece& piece : pieces) {
        times.push_back(piece.start);
        times.push_back(piece.end);
    }
    std::erase_if(times, [&](double time) { return time < span.start || time > span.end; });
    std::ranges::sort(times);
    const auto duplicates = std::ranges::unique(times);
    times.erase(duplicates.begin(), duplicates.end());
    return times;
}

/// Answers for ascending times which of many ranges, sorted by start, is the first to hold a time.
///
/// A range that has ended once never holds a later time, so one walk over the ranges serves all
/// questions, also where they overlap.
template <typename Range>
class Sweep {
public:
    explicit Sweep(std::span<const Range> ranges)
        : m_ranges(ranges)
    {
    }

    /// The first range with start <= time < end, or null.
    const Range* at(double time)
    {
        while (m_next < m_ranges.size() && m_ranges[m_next].end <= time) {
            ++m_next;
        }
        const bool holds = m_next < m_ranges.size() && m_ranges[m_next].start <= time;
        return holds ? &m_ranges[m_next] : nullptr;
    }

private:
    std::span<const Range> m_ranges;
    std::size_t m_next = 0;
};

void append(std::vector<SpeedSegment>& segments, const SpeedSegment& segment)
{
    if (!segments.empty() && std::abs(segments.back().sourceEnd - segment.sourceStart) < kSeam
        && segments.back().speed == segment.speed) {
        segments.back().sourceEnd = segment.sourceEnd;
    } else {
        segments.push_back(segment);
    }
}

} // namespace

std::vector<SpeedSegment> buildTimeRemap(
    std::span<const Moment> moments,
    double duration,
    const PlanConfig& config,
    std::span<const TimeRange> protectedSpeech)
{
    if (moments.empty()) {
        return {{0, duration, 1}};
    }
    const TimeRange span = keptSpan(moments, duration, protectedSpeech);
    const SpeechProtection protection(protectedSpeech);
    const std::vector<FastPiece> pieces = fastPieces(moments, config, protection);
    const std::vector<TimeRange> cuts = cutRanges(moments, config, protection);

    Sweep<TimeRange> cutSweep(cuts);
    Sweep<FastPiece> pieceSweep(pieces);
    std::vector<SpeedSegment> segments;
    const std::vector<double> times = boundaries(span, cuts, pieces);
    for (std::size_t i = 1; i < times.size(); ++i) {
        const double a = times[i - 1];
        const double b = times[i];
        const double mid = (a + b) * 0.5;
        if (!(b - a > kShortestSegment) || cutSweep.at(mid) != nullptr) {
            continue;
        }
        const FastPiece* piece = pieceSweep.at(mid);
        append(segments, {a, b, piece != nullptr ? piece->speed : 1});
    }
    return segments;
}

} // namespace zento::EditPlanner
