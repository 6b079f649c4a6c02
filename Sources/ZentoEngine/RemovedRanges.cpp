#include "ZentoEngine/RemovedRanges.h"

#include <algorithm>

namespace zento::EditPlanner {

namespace {

constexpr double kShortestSegment = 0.05; // source seconds, exclusive

/// Sorted and disjoint, with ranges that touch merged: taking these out leaves the same pieces as
/// taking out the originals one after the other.
std::vector<Overrides::SourceRange> united(std::span<const Overrides::SourceRange> ranges)
{
    std::vector<Overrides::SourceRange> sorted;
    for (const Overrides::SourceRange& range : ranges) {
        if (range.start < range.end) {
            sorted.push_back(range);
        }
    }
    std::ranges::sort(sorted, {}, &Overrides::SourceRange::start);
    std::vector<Overrides::SourceRange> result;
    for (const Overrides::SourceRange& range : sorted) {
        if (!result.empty() && range.start <= result.back().end) {
            result.back().end = std::max(result.back().end, range.end);
        } else {
            result.push_back(range);
        }
    }
    return result;
}

} // namespace

std::vector<SpeedSegment>
subtract(std::vector<SpeedSegment> segments, std::span<const Overrides::SourceRange> removed)
{
    if (removed.empty()) {
        return segments;
    }
    const std::vector<Overrides::SourceRange> gaps = united(removed);
    std::vector<SpeedSegment> result;
    const auto keep = [&](double start, double end, double speed) {
        if (end - start > kShortestSegment) {
            result.push_back({start, end, speed});
        }
    };
    for (const SpeedSegment& segment : segments) {
        double start = segment.sourceStart;
        auto gap = std::ranges::upper_bound(gaps, start, {}, &Overrides::SourceRange::end);
        for (; gap != gaps.end() && gap->start < segment.sourceEnd; ++gap) {
            keep(start, gap->start, segment.speed);
            start = gap->end;
        }
        keep(start, segment.sourceEnd, segment.speed);
    }
    return result;
}

} // namespace zento::EditPlanner
