#include "ZentoEngine/Captions.h"

#include "ZentoCore/Text.h"

#include <algorithm>

namespace zento::EditPlanner {

namespace {

constexpr std::size_t kLineLimit = 80;   // characters
constexpr double kShortestCaption = 0.3; // output seconds

struct Word {
    std::string_view text;
    std::size_t characters = 0;
};

/// Split at spaces that are characters of their own: one that carries a combining mark is not.
std::vector<Word> words(std::string_view text, const std::vector<std::size_t>& bounds)
{
    std::vector<Word> result;
    std::size_t begin = 0; // index of the word's first character
    for (std::size_t i = 0; i < bounds.size(); ++i) {
        const bool isEnd = i + 1 == bounds.size();
        if (!isEnd && text.substr(bounds[i], bounds[i + 1] - bounds[i]) != " ") {
            continue;
        }
        if (begin < i) {
            result.push_back({text.substr(bounds[begin], bounds[i] - bounds[begin]), i - begin});
        }
        begin = i + 1;
    }
    return result;
}

void appendCaption(
    std::vector<CaptionChip>& chips, const TranscriptSegment& segment, const RemapCurve& remap)
{
    const std::string_view text = trimmed(segment.text);
    if (text.empty() || !remap.contains((segment.start + segment.end) * 0.5)) {
        return;
    }
    const double start = remap.outputTime(segment.start);
    const double end = remap.outputTime(segment.end);
    const double span = std::max(start + kShortestCaption, end) - start;
    const std::vector<std::string> lines = splitCaption(text, kLineLimit);
    std::vector<double> counts;
    double total = 0;
    for (const std::string& line : lines) {
        counts.push_back(static_cast<double>(characterCount(line)));
        total += counts.back();
    }
    double running = start;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const double duration = span * counts[i] / std::max(total, 1.0);
        chips.push_back({running, running + duration, lines[i]});
        running += duration;
    }
}

} // namespace

std::vector<std::string> splitCaption(std::string_view text, std::size_t limit)
{
    const std::vector<std::size_t> bounds = characterBounds(text);
    if (bounds.size() - 1 <= limit) {
        return {std::string(text)};
    }
    std::vector<std::string> lines;
    std::size_t characters = 0; // of the last line
    for (const Word& word : words(text, bounds)) {
        if (!lines.empty() && characters + 1 + word.characters <= limit) {
            lines.back() += ' ';
            lines.back() += word.text;
            characters += 1 + word.characters;
        } else {
            lines.emplace_back(word.text);
            characters = word.characters;
        }
    }
    return lines;
}

std::vector<CaptionChip>
buildCaptions(std::span<const TranscriptSegment> transcript, const RemapCurve& remap)
{
    std::vector<CaptionChip> chips;
    for (const TranscriptSegment& segment : transcript) {
        appendCaption(chips, segment, remap);
    }
    std::ranges::stable_sort(chips, {}, &CaptionChip::tOut);
    return chips;
}

} // namespace zento::EditPlanner
