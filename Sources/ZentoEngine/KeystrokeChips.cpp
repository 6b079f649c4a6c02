#include "ZentoEngine/KeystrokeChips.h"

#include "ZentoCore/Text.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zento::EditPlanner {

namespace {

constexpr double kRunGap = 0.6;      // source seconds, inclusive
constexpr double kLastChip = 0.9;    // output seconds
constexpr std::size_t kTooLong = 27; // characters
constexpr std::size_t kShown = 25;
constexpr std::string_view kEllipsis = "…";

/// The text of one run of keys, as far as a chip can show it.
///
/// Only the end of a long text is kept, cut between two characters: what follows can join the last
/// character but never move an earlier boundary, so the count stays true and the cost of a key does
/// not grow with the run.
class GrowingText {
public:
    void append(std::string_view label)
    {
        // Labels of several characters ("⌘S", "Esc") stand apart, letters make words.
        if (!m_tail.empty() && characterCount(label) >= 2) {
            m_tail += "  ";
        }
        m_tail += label;
        m_tail = lastCharacters(m_tail, kTooLong);
    }

    std::string shown() const
    {
        if (characterCount(m_tail) < kTooLong) {
            return m_tail;
        }
        return std::string(kEllipsis).append(lastCharacters(m_tail, kShown));
    }

private:
    std::string m_tail; // at most kTooLong characters
};

void appendChips(
    std::vector<KeystrokeChip>& chips,
    std::span<const InputEvent* const> run,
    const RemapCurve& remap)
{
    GrowingText text;
    for (std::size_t i = 0; i < run.size(); ++i) {
        const InputEvent& event = *run[i];
        if (!event.key || !remap.contains(event.t)) {
            continue;
        }
        text.append(*event.key);
        const double start = remap.outputTime(event.t);
        const double end = i + 1 < run.size() ? remap.outputTime(run[i + 1]->t) : start + kLastChip;
        chips.push_back({start, end, text.shown()});
    }
}

} // namespace

std::vector<KeystrokeChip> keystrokeChips(const EventLog& events, const RemapCurve& remap)
{
    std::vector<KeystrokeChip> chips;
    forEachRun(events.keys, kRunGap, [&](auto run) { appendChips(chips, run, remap); });
    return chips;
}

} // namespace zento::EditPlanner
