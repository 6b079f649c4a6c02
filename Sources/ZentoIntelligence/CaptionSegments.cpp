#include "ZentoIntelligence/CaptionSegments.h"

#include <cstddef>
#include <string_view>

namespace zento {

namespace {

constexpr double kPause = 0.45;     // seconds between words that end a segment
constexpr double kBreath = 0.15;    // that end one which is long enough
constexpr std::size_t kEnough = 42; // letters from which a breath will do: about a line
constexpr std::size_t kMost = 80;   // letters of one: longer ones the film would split again

bool isSelf(std::string_view word)
{
    return word == "i" || word.starts_with("i'");
}

std::string capitalised(std::string word)
{
    if (!word.empty() && word[0] >= 'a' && word[0] <= 'z')
        word[0] = static_cast<char>(word[0] - 'a' + 'A');
    return word;
}

bool endsBefore(const TranscriptSegment& segment, const SpokenWord& next, double lastEnd)
{
    const double pause = next.start - lastEnd;
    const std::size_t length = segment.text.size();
    return pause >= kPause || (length >= kEnough && pause >= kBreath)
           || length + next.text.size() + 1 > kMost;
}

} // namespace

std::vector<TranscriptSegment> captionSegments(std::span<const SpokenWord> words, double offset)
{
    std::vector<TranscriptSegment> segments;
    double lastEnd = 0;
    for (const SpokenWord& word : words) {
        const bool isFirst = segments.empty() || endsBefore(segments.back(), word, lastEnd);
        if (isFirst)
            segments.push_back({.start = offset + word.start, .end = 0, .text = {}});
        TranscriptSegment& segment = segments.back();
        if (!isFirst)
            segment.text += ' ';
        segment.text += isFirst || isSelf(word.text) ? capitalised(word.text) : word.text;
        segment.end = offset + word.end;
        lastEnd = word.end;
    }
    return segments;
}

} // namespace zento
