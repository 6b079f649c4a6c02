#include "ZentoEngine/SpeechRanges.h"

#include <algorithm>
#include <utility>

namespace zento::EditPlanner {

namespace {

/// Takes `speech` out of the last piece. The others end where earlier speech starts, so no later
/// speech reaches them.
void removeSpeech(std::vector<TimeRange>& pieces, TimeRange speech)
{
    const TimeRange piece = pieces.back();
    if (speech.end <= piece.start || piece.end <= speech.start) {
        return;
    }
    pieces.pop_back();
    if (piece.start < speech.start) {
        pieces.push_back({piece.start, speech.start});
    }
    if (speech.end < piece.end) {
        pieces.push_back({speech.end, piece.end});
    }
}

} // namespace

std::vector<TimeRange> speechRanges(std::span<const TranscriptSegment> transcript, double pad)
{
    std::vector<TimeRange> ranges;
    for (const TranscriptSegment& segment : transcript) {
        ranges.push_back({segment.start - pad, segment.end + pad});
    }
    std::ranges::stable_sort(ranges, {}, &TimeRange::start);
    std::vector<TimeRange> merged;
    for (const TimeRange& range : ranges) {
        if (!merged.empty() && range.start <= merged.back().end) {
            merged.back().end = std::max(merged.back().end, range.end);
        } else {
            merged.push_back(range);
        }
    }
    return merged;
}

SpeechProtection::SpeechProtection(std::span<const TimeRange> speech)
    : m_speech(speech)
{
    for (const TimeRange& range : speech) {
        m_latestEnd.push_back(
            m_latestEnd.empty() ? range.end : std::max(m_latestEnd.back(), range.end));
    }
}

std::vector<TimeRange> SpeechProtection::unprotected(TimeRange range) const
{
    if (!(range.start < range.end)) {
        return {};
    }
    const auto firstIndex = std::ranges::upper_bound(m_latestEnd, range.start);
    auto index = static_cast<std::size_t>(firstIndex - m_latestEnd.begin());
    std::vector<TimeRange> pieces = {range};
    for (; index < m_speech.size() && m_speech[index].start < range.end && !pieces.empty();
         ++index) {
        removeSpeech(pieces, m_speech[index]);
    }
    return pieces;
}

} // namespace zento::EditPlanner
