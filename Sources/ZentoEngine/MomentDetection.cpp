#include "ZentoEngine/MomentDetection.h"

#include "ZentoEngine/NearestTime.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace zento::EditPlanner {

namespace {

// Seconds of source time.
constexpr double kTypingGap = 0.55;
constexpr double kScrollGap = 0.4;
constexpr double kClickLength = 0.12;
constexpr double kTypingTail = 0.2;
constexpr double kScrollTail = 0.1;
constexpr double kHintDistance = 0.08;    // exclusive
constexpr double kTargetTolerance = 0.05; // a click may be logged just after the first key

/// The framing hints by time.
class HintIndex {
public:
    HintIndex(std::span<const FramingHint> hints, const SessionMeta& meta)
        : m_hints(hints)
        , m_meta(meta)
        , m_times(times(hints))
    {
    }

    std::optional<Rect> rect(double time) const
    {
        const auto match = m_times.find(time);
        if (!match || !(match->distance < kHintDistance)) {
            return std::nullopt;
        }
        return sanitizedHint(m_hints[match->index].rect, m_meta);
    }

    /// What a click shows: the element under it, or else a hint.
    std::optional<Rect> focus(const InputEvent& click) const
    {
        if (click.ax) {
            if (const auto frame = click.ax->usableFrame(m_meta)) {
                return frame;
            }
        }
        return rect(click.t);
    }

private:
    static std::vector<double> times(std::span<const FramingHint> hints)
    {
        std::vector<double> result;
        result.reserve(hints.size());
        for (const FramingHint& hint : hints) {
            result.push_back(hint.sourceTime);
        }
        return result;
    }

    std::span<const FramingHint> m_hints;
    const SessionMeta& m_meta;
    NearestTime m_times;
};

/// The clicks into text fields. The last one in recording order with `t` up to a limit is asked
/// for, and the log need not ascend: the smallest `t` from each click on does, so it can be
/// searched.
class TextTargets {
public:
    explicit TextTargets(const EventList& clicks)
    {
        for (const InputEvent* click : clicks) {
            if (click->ax && isTextRole(click->ax->role)) {
                m_clicks.push_back(click);
            }
        }
        m_earliestFrom.resize(m_clicks.size());
        for (std::size_t i = m_clicks.size(); i-- > 0;) {
            m_earliestFrom[i] = i + 1 < m_clicks.size()
                                    ? std::min(m_clicks[i]->t, m_earliestFrom[i + 1])
                                    : m_clicks[i]->t;
        }
    }

    /// Null if there is none.
    const InputEvent* lastUpTo(double time) const
    {
        const auto after = std::ranges::upper_bound(m_earliestFrom, time);
        const auto count = static_cast<std::size_t>(after - m_earliestFrom.begin());
        return count == 0 ? nullptr : m_clicks[count - 1];
    }

private:
    static bool isTextRole(std::string_view role)
    {
        return role.contains("TextField") || role.contains("TextArea");
    }

    EventList m_clicks;
    std::vector<double> m_earliestFrom;
};

/// The place, the frame and the title of what was clicked.
void describe(Moment& moment, const InputEvent& click, const HintIndex& hints)
{
    moment.pos = click.pos;
    moment.focus = hints.focus(click);
    if (click.ax) {
        moment.title = click.ax->title;
    }
}

Moment clickMoment(const InputEvent& click, const HintIndex& hints)
{
    Moment moment;
    moment.kind = Moment::Kind::Click;
    moment.start = click.t;
    moment.end = click.t + kClickLength;
    describe(moment, click, hints);
    return moment;
}

Moment typingMoment(
    std::span<const InputEvent* const> run, const TextTargets& targets, const HintIndex& hints)
{
    const InputEvent& first = *run.front();
    Moment moment;
    moment.kind = Moment::Kind::Typing;
    moment.start = first.t;
    moment.end = run.back()->t + kTypingTail;
    moment.pos = first.pos;
    if (const InputEvent* target = targets.lastUpTo(first.t + kTargetTolerance)) {
        describe(moment, *target, hints);
    }
    return moment;
}

Moment scrollMoment(std::span<const InputEvent* const> run)
{
    Moment moment;
    moment.kind = Moment::Kind::Scroll;
    moment.start = run.front()->t;
    moment.end = run.back()->t + kScrollTail;
    moment.pos = run.front()->pos;
    return moment;
}

} // namespace

std::optional<Rect> sanitizedHint(const Rect& hint, const SessionMeta& meta)
{
    const double width = meta.pixelWidth;
    const double height = meta.pixelHeight;
    const bool isUsable = hint.w >= 24 && hint.h >= 24                       //
                          && hint.w <= 0.8 * width && hint.h <= 0.8 * height //
                          && hint.x >= -hint.w && hint.y >= -hint.h          //
                          && hint.x + hint.w <= 1.05 * width && hint.y + hint.h <= 1.05 * height;
    return isUsable ? std::optional(hint) : std::nullopt;
}

std::vector<Moment> detectMoments(
    const EventLog& events, const SessionMeta& meta, std::span<const FramingHint> framingHints)
{
    const HintIndex hints(framingHints, meta);
    const TextTargets targets(events.clicks);

    std::vector<Moment> moments;
    for (const InputEvent* click : events.clicks) {
        moments.push_back(clickMoment(*click, hints));
    }
    forEachRun(events.keys, kTypingGap, [&](auto run) {
        if (run.size() >= 2) { // a lone key press is no typing
            moments.push_back(typingMoment(run, targets, hints));
        }
    });
    forEachRun(events.scrolls, kScrollGap, [&](auto run) { moments.push_back(scrollMoment(run)); });
    std::ranges::stable_sort(moments, {}, &Moment::start);
    return moments;
}

} // namespace zento::EditPlanner
