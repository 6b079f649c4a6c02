#include "ZentoIntelligence/SessionDigest.h"

#include "ZentoCore/Text.h"
#include "ZentoIntelligence/TypingBursts.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <set>

namespace zento {

namespace {

/// Titles in the order they first come in, without repetitions but for case.
class Titles {
public:
    explicit Titles(std::vector<std::string>& kept)
        : m_kept(kept)
    {
    }

    void add(const std::optional<std::string>& title)
    {
        constexpr std::size_t kMost = 12;
        const std::string text(trimmed(title.value_or("")));
        if (!text.empty() && m_seen.insert(lowerCased(text)).second && m_kept.size() < kMost)
            m_kept.push_back(text);
    }

private:
    std::vector<std::string>& m_kept;
    std::set<std::string> m_seen;
};

double filmLength(const EditPlan& plan)
{
    double seconds = 0;
    for (const SpeedSegment& segment : plan.timeRemap)
        seconds += (segment.sourceEnd - segment.sourceStart) / segment.speed;
    return seconds;
}

std::string joined(const std::vector<std::string>& items)
{
    std::string result;
    for (const std::string& item : items)
        result += (result.empty() ? "" : ", ") + item;
    return result;
}

std::string activity(const SessionDigest& digest)
{
    std::vector<std::string> items;
    if (digest.clickCount > 0)
        items.push_back(std::to_string(digest.clickCount) + " clicks");
    if (digest.typingBurstCount > 0)
        items.push_back(std::to_string(digest.typingBurstCount) + " typing bursts");
    if (digest.scrollCount > 0)
        items.emplace_back("some scrolling");
    return joined(items);
}

} // namespace

SessionDigest SessionDigest::extract(
    const SessionMeta& meta, std::span<const InputEvent> events, const EditPlan* plan)
{
    SessionDigest digest;
    digest.appName = meta.appName;
    digest.sourceDuration = meta.duration;
    Titles interactions(digest.interactionTitles);
    TypingBursts bursts;
    for (const InputEvent& event : events) {
        if (event.kind == EventKind::Scroll)
            ++digest.scrollCount;
        else if (event.kind == EventKind::KeyDown && bursts.begins(event.t))
            ++digest.typingBurstCount;
        else if (event.kind == EventKind::Click) {
            ++digest.clickCount;
            if (event.ax)
                interactions.add(event.ax->title);
        }
    }
    if (plan != nullptr) {
        digest.outputDuration = filmLength(*plan);
        Titles highlights(digest.highlightTitles);
        for (const FocusMoment& moment : plan->focusMoments.value_or(std::vector<FocusMoment>{}))
            highlights.add(moment.title);
    }
    return digest;
}

std::string SessionDigest::promptSummary() const
{
    std::string text;
    if (appName)
        text += "App shown: " + *appName + '\n';
    text += "Recording: " + spokenSeconds(sourceDuration) + " of screen activity";
    if (outputDuration)
        text += "\nEdited video length: " + spokenSeconds(*outputDuration);
    if (const std::string items = activity(*this); !items.empty())
        text += "\nActivity: " + items;
    if (!interactionTitles.empty())
        text += "\nUI elements used, in order: " + joined(interactionTitles);
    if (!highlightTitles.empty())
        text += "\nMoments the edit zooms into: " + joined(highlightTitles);
    return text;
}

std::string spokenSeconds(double seconds)
{
    std::array<char, 340> text{}; // the digits of the largest double
    std::snprintf(text.data(), text.size(), "%.0f seconds", std::round(seconds));
    return text.data();
}

} // namespace zento
