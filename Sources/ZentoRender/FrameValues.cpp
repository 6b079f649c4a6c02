#include "ZentoRender/FrameValues.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {
namespace {

constexpr double kPulseReach = 0.15;     // seconds
constexpr double kRippleDuration = 0.45; // seconds
constexpr double kIdleBeforeFade = 1.5;  // seconds
constexpr double kIdleFade = 0.4;        // seconds
static_assert(kIdleBeforeFade + kIdleFade < PointerIdleness::kMemory);
constexpr double kActivityDistance = 3.0; // source pixels
constexpr double kChapterDuration = 2.8;  // seconds

struct Fades {
    double in = 0; // seconds
    double out = 0;
};
constexpr Fades kKeystrokeFades = {0.15, 0.2};
constexpr Fades kCaptionFades = {0.12, 0.25};
constexpr Fades kChapterFades = {0.25, 0.4};

/// The opacity at `t` of what is seen from `begin` to `end`, its fades included.
double fadedAlpha(double t, double begin, double end, Fades fades)
{
    return std::clamp(std::min((t - begin) / fades.in, (end - t) / fades.out), 0.0, 1.0);
}

/// The last item that is seen at `t`. `seen` gives when it is, its fades included; `textOf` what it
/// says.
template <typename Item, typename Seen>
std::optional<FrameText>
lastSeen(std::span<const Item> items, double t, Fades fades, Seen seen, std::string Item::* textOf)
{
    for (std::size_t i = items.size(); i-- > 0;) {
        const auto [begin, end] = seen(items[i]);
        if (begin <= t && t <= end)
            return FrameText{.text = items[i].*textOf, .alpha = fadedAlpha(t, begin, end, fades)};
    }
    return std::nullopt;
}

} // namespace

std::vector<FilmClick>
filmClicks(const EditPlan& plan, const std::vector<InputEvent>& events, const RemapCurve& curve)
{
    std::vector<FilmClick> clicks;
    const auto add = [&](double t, Vec2 pos) {
        if (curve.contains(t))
            clicks.push_back({.tOut = curve.outputTime(t), .pos = pos});
    };
    for (const ClickMarker& click : plan.clicks)
        add(click.t, click.pos);
    if (plan.clicks.empty()) {
        for (const InputEvent& event : events)
            if (event.kind == EventKind::Click)
                add(event.t, event.pos);
    }
    return clicks;
}

std::vector<CursorSample> cursorTrack(const EditPlan& plan, const std::vector<InputEvent>& events)
{
    std::vector<CursorSample> track = plan.cursor;
    if (track.empty()) {
        for (const InputEvent& event : events)
            if (event.kind == EventKind::Move)
                track.push_back({.t = event.t, .pos = event.pos, .style = "arrow"});
    }
    std::ranges::stable_sort(track, {}, &CursorSample::t);
    return track;
}

std::optional<CursorPlace> interpolate(std::span<const CursorSample> samples, double t)
{
    if (samples.empty())
        return std::nullopt;
    const auto at = [](const CursorSample& sample) {
        return CursorPlace{.pos = sample.pos, .style = sample.style};
    };
    if (t <= samples.front().t)
        return at(samples.front());
    if (t >= samples.back().t)
        return at(samples.back());
    const auto next = std::ranges::upper_bound(samples, t, {}, &CursorSample::t);
    const CursorSample& a = *std::prev(next);
    const CursorSample& b = *next;
    const double f = (t - a.t) / (b.t - a.t); // a.t <= t < b.t
    return CursorPlace{
        .pos = {a.pos.x + (b.pos.x - a.pos.x) * f, a.pos.y + (b.pos.y - a.pos.y) * f},
        .style = a.style};
}

double clickPulse(std::span<const FilmClick> clicks, double tOut)
{
    double pulse = 0;
    for (const FilmClick& click : clicks)
        pulse = std::max(pulse, 1 - std::abs(tOut - click.tOut) / kPulseReach);
    return pulse;
}

std::vector<Ripple> ripples(std::span<const FilmClick> clicks, double tOut)
{
    std::vector<Ripple> alive;
    for (const FilmClick& click : clicks) {
        const double age = tOut - click.tOut;
        if (age >= 0 && age < kRippleDuration)
            alive.push_back({.pos = click.pos, .progress = age / kRippleDuration});
    }
    return alive;
}

std::optional<FrameText> keystrokeAt(std::span<const KeystrokeChip> chips, double tOut)
{
    const auto seen = [](const KeystrokeChip& chip) {
        return std::pair(chip.tOut - kKeystrokeFades.in, chip.tOutEnd + kKeystrokeFades.out);
    };
    return lastSeen(chips, tOut, kKeystrokeFades, seen, &KeystrokeChip::label);
}

std::optional<FrameText> captionAt(std::span<const CaptionChip> captions, double tOut)
{
    const auto seen = [](const CaptionChip& caption) {
        return std::pair(caption.tOut - kCaptionFades.in, caption.tOutEnd + kCaptionFades.out);
    };
    return lastSeen(captions, tOut, kCaptionFades, seen, &CaptionChip::text);
}

std::optional<FrameText> chapterAt(std::span<const ChapterMarker> chapters, double tOut)
{
    const auto seen = [](const ChapterMarker& chapter) {
        return std::pair(chapter.tOut, chapter.tOut + kChapterDuration);
    };
    return lastSeen(chapters, tOut, kChapterFades, seen, &ChapterMarker::title);
}

double PointerIdleness::step(double tOut, Vec2 pos, double pulse)
{
    const double moved = std::hypot(pos.x - m_previous.x, pos.y - m_previous.y);
    if (pulse > 0 || moved > kActivityDistance)
        m_lastActive = tOut;
    m_previous = pos;
    const double idle = tOut - m_lastActive;
    if (idle < kIdleBeforeFade)
        return 1;
    return std::max(0.0, 1 - (idle - kIdleBeforeFade) / kIdleFade);
}

} // namespace zento
