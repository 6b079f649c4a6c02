#include "ZentoRender/FrameValues.h"

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

constexpr double kPulseReach = 0.15;      // seconds
constexpr double kRippleDuration = 0.45;  // seconds
constexpr double kIdleBeforeFade = 1.5;   // seconds
constexpr double kIdleFade = 0.4;         // seconds
constexpr double kActivityDistance = 3.0; // source pixels

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
