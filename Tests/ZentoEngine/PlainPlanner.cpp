#include "PlainPlanner.h"

#include "ZentoCore/Text.h"
#include "ZentoEngine/MomentDetection.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <optional>
#include <ranges>
#include <set>
#include <string>

namespace zento::test::plain {

using EditPlanner::Moment;
using EditPlanner::PlanInput;
using EditPlanner::TimeRange;

namespace {

std::vector<InputEvent> ofKind(const PlanInput& input, EventKind kind)
{
    std::vector<InputEvent> result;
    std::ranges::copy_if(
        input.events, std::back_inserter(result), [&](const auto& e) { return e.kind == kind; });
    return result;
}

std::vector<std::vector<InputEvent>> runs(const PlanInput& input, EventKind kind, double gap)
{
    std::vector<std::vector<InputEvent>> result;
    for (const InputEvent& event : ofKind(input, kind)) {
        if (result.empty() || event.t - result.back().back().t > gap) {
            result.emplace_back();
        }
        result.back().push_back(event);
    }
    return result;
}

std::optional<Rect> hintRect(const PlanInput& input, double t)
{
    const FramingHint* nearest = nullptr;
    for (const FramingHint& hint : input.framingHints) {
        const double distance = std::abs(hint.sourceTime - t);
        if (distance < 0.08
            && (nearest == nullptr || distance < std::abs(nearest->sourceTime - t))) {
            nearest = &hint;
        }
    }
    return nearest != nullptr ? EditPlanner::sanitizedHint(nearest->rect, input.meta)
                              : std::nullopt;
}

Moment ofClick(const PlanInput& input, const InputEvent& click)
{
    Moment moment;
    moment.start = click.t;
    moment.end = click.t + 0.12;
    moment.pos = click.pos;
    if (click.ax) {
        moment.focus = click.ax->usableFrame(input.meta);
        moment.title = click.ax->title;
    }
    if (!moment.focus) {
        moment.focus = hintRect(input, click.t);
    }
    return moment;
}

std::vector<TimeRange> withoutSpeech(TimeRange range, std::span<const TimeRange> speech)
{
    std::vector<TimeRange> pieces = {range};
    for (const auto& [a, b] : speech) {
        std::vector<TimeRange> next;
        for (const auto& [s, e] : pieces) {
            if (s < b && a < e) {
                if (s < a) {
                    next.push_back({s, a});
                }
                if (b < e) {
                    next.push_back({b, e});
                }
            } else {
                next.push_back({s, e});
            }
        }
        pieces = next;
    }
    return pieces;
}

Vec2 pointerAt(const PlanInput& input, double t)
{
    const std::vector<InputEvent> moves = ofKind(input, EventKind::Move);
    const auto next = std::ranges::find_if(moves, [&](const auto& move) { return move.t >= t; });
    if (next != moves.end()) {
        return next->pos;
    }
    for (const InputEvent& move : moves | std::views::reverse) {
        if (move.t <= t) {
            return move.pos;
        }
    }
    return {};
}

} // namespace

std::vector<Moment> detectMoments(const PlanInput& input)
{
    std::vector<Moment> moments;
    const std::vector<InputEvent> clicks = ofKind(input, EventKind::Click);
    std::ranges::transform(clicks, std::back_inserter(moments), [&](const InputEvent& click) {
        return ofClick(input, click);
    });
    for (const auto& run : runs(input, EventKind::KeyDown, 0.55)) {
        if (run.size() < 2) {
            continue;
        }
        Moment moment;
        moment.pos = run.front().pos;
        for (const InputEvent& click : clicks | std::views::reverse) {
            if (click.t <= run.front().t + 0.05 && click.ax
                && (click.ax->role.contains("TextField") || click.ax->role.contains("TextArea"))) {
                moment = ofClick(input, click);
                break;
            }
        }
        moment.kind = Moment::Kind::Typing;
        moment.start = run.front().t;
        moment.end = run.back().t + 0.2;
        moments.push_back(moment);
    }
    for (const auto& run : runs(input, EventKind::Scroll, 0.4)) {
        Moment moment;
        moment.kind = Moment::Kind::Scroll;
        moment.start = run.front().t;
        moment.end = run.back().t + 0.1;
        moment.pos = run.front().pos;
        moments.push_back(moment);
    }
    std::ranges::stable_sort(moments, {}, &Moment::start);
    return moments;
}

std::vector<Moment> applyZoomEdits(std::vector<Moment> moments, const PlanInput& input)
{
    for (const Overrides::ZoomEdit& edit : input.overrides.zoomEdits) {
        const auto nearest = std::ranges::min_element(moments, {}, [&](const Moment& moment) {
            return std::abs(moment.start - edit.sourceTime);
        });
        if (nearest == moments.end() || std::abs(nearest->start - edit.sourceTime) > 0.35) {
            continue;
        }
        nearest->editKey = nearest->start;
        if (edit.newSourceTime) {
            nearest->end = *edit.newSourceTime + (nearest->end - nearest->start);
            nearest->start = *edit.newSourceTime;
        }
        nearest->forcedZoom = edit.level;
        nearest->hold = edit.hold;
    }
    std::erase_if(moments, [&](const Moment& moment) {
        return moment.kind != Moment::Kind::Scroll
               && input.overrides.zoomDeleted(moment.editKey.value_or(moment.start));
    });
    for (const Overrides::AddedZoom& zoom : input.overrides.addedZooms) {
        Moment moment;
        moment.kind = Moment::Kind::Added;
        moment.start = zoom.sourceTime;
        moment.end = zoom.sourceTime + 0.12;
        moment.pos = pointerAt(input, zoom.sourceTime);
        moment.editKey = zoom.id;
        moment.forcedZoom = zoom.level;
        moment.hold = zoom.hold;
        moments.push_back(moment);
    }
    std::ranges::stable_sort(moments, {}, &Moment::start);
    return moments;
}

std::vector<SpeedSegment> buildTimeRemap(
    std::span<const Moment> moments, const PlanInput& input, std::span<const TimeRange> speech)
{
    const PlanConfig& config = input.config;
    const double duration = input.meta.duration;
    if (moments.empty()) {
        return {{0, duration, 1}};
    }
    double lastEnd = moments.front().end;
    double cursor = moments.front().start;
    std::vector<SpeedSegment> fast;
    std::vector<TimeRange> cuts;
    for (const Moment& moment : moments) {
        lastEnd = std::max(lastEnd, moment.end);
        std::vector<TimeRange> pieces;
        double speed = config.scrollSpeed;
        if (moment.kind == Moment::Kind::Typing) {
            pieces = withoutSpeech({moment.start + 0.15, moment.end - 0.1}, speech);
            speed = config.typingSpeed;
        } else if (moment.kind == Moment::Kind::Scroll) {
            pieces = withoutSpeech({moment.start, moment.end}, speech);
        }
        for (const auto& [s, e] : pieces) {
            if (e - s >= 0.2 && e - s > 0.2) {
                fast.push_back({s, e, speed});
            }
        }
        if (config.idleThreshold + config.preHandle + config.postHandle < moment.start - cursor) {
            const TimeRange gap = {cursor + config.postHandle, moment.start - config.preHandle};
            for (const auto& piece : withoutSpeech(gap, speech)) {
                if (piece.end - piece.start >= 0.6) {
                    cuts.push_back(piece);
                }
            }
        }
        cursor = std::max(cursor, moment.end);
    }
    std::ranges::stable_sort(fast, {}, &SpeedSegment::sourceStart);
    double keepStart = std::max(moments.front().start - 0.9, 0.0);
    double keepEnd = std::min(lastEnd + 1.3, duration);
    if (!speech.empty()) {
        keepStart = std::max(std::min(speech.front().start, keepStart), 0.0);
        keepEnd = std::min(std::max(keepEnd, speech.back().end + 0.4), duration);
    }
    std::set<double> times = {keepStart, keepEnd};
    for (const auto& cut : cuts) {
        times.insert({cut.start, cut.end});
    }
    for (const auto& piece : fast) {
        times.insert({piece.sourceStart, piece.sourceEnd});
    }
    std::erase_if(times, [&](double t) { return t < keepStart || t > keepEnd; });
    std::vector<SpeedSegment> result;
    for (auto it = times.begin(); std::next(it) != times.end(); ++it) {
        const double a = *it;
        const double b = *std::next(it);
        const double mid = (a + b) * 0.5;
        if (!(b - a > 1e-6) || std::ranges::any_of(cuts, [&](const auto& cut) {
                return cut.start <= mid && mid < cut.end;
            })) {
            continue;
        }
        const auto piece = std::ranges::find_if(
            fast, [&](const auto& p) { return p.sourceStart <= mid && mid < p.sourceEnd; });
        const double speed = piece != fast.end() ? piece->speed : 1;
        if (!result.empty() && std::abs(result.back().sourceEnd - a) < 1e-6
            && result.back().speed == speed) {
            result.back().sourceEnd = b;
        } else {
            result.push_back({a, b, speed});
        }
    }
    return result;
}

std::vector<SpeedSegment>
subtract(std::vector<SpeedSegment> segments, std::span<const Overrides::SourceRange> removed)
{
    if (removed.empty()) {
        return segments;
    }
    for (const auto& [a, b] : removed) {
        std::vector<SpeedSegment> next;
        for (const auto& [s, e, speed] : segments) {
            if (!(a < b) || b <= s || e <= a) {
                next.push_back({s, e, speed});
                continue;
            }
            if (s < a) {
                next.push_back({s, a, speed});
            }
            if (b < e) {
                next.push_back({b, e, speed});
            }
        }
        segments = next;
    }
    std::erase_if(segments, [](const auto& s) { return !(s.sourceEnd - s.sourceStart > 0.05); });
    return segments;
}

std::vector<CursorSample> smoothCursor(std::span<const Moment> moments, const PlanInput& input)
{
    std::vector<InputEvent> moves = ofKind(input, EventKind::Move);
    std::ranges::stable_sort(moves, {}, &InputEvent::t);
    const std::vector<InputEvent> clicks = ofKind(input, EventKind::Click);
    std::vector<CursorSample> samples;
    for (const InputEvent& move : moves) {
        Vec2 sum;
        double count = 0;
        for (const InputEvent& other : moves) {
            if (other.t >= move.t - 0.045 && other.t <= move.t + 0.045) {
                sum = {sum.x + other.pos.x, sum.y + other.pos.y};
                ++count;
            }
        }
        const bool isTyping = std::ranges::any_of(moments, [&](const Moment& m) {
            return m.kind == Moment::Kind::Typing && m.start <= move.t && move.t <= m.end;
        });
        const bool isClick = input.config.pointerOnClick
                             && std::ranges::any_of(clicks, [&](const InputEvent& click) {
                                    return click.t - 0.15 <= move.t && move.t <= click.t + 0.4;
                                });
        const char* style = isTyping ? "iBeam" : isClick ? "pointingHand" : "arrow";
        samples.push_back({move.t, {sum.x / count, sum.y / count}, style});
    }
    return samples;
}

std::vector<KeystrokeChip> keystrokeChips(const PlanInput& input, const RemapCurve& remap)
{
    std::vector<KeystrokeChip> chips;
    for (const auto& run : runs(input, EventKind::KeyDown, 0.6)) {
        std::string text;
        for (std::size_t i = 0; i < run.size(); ++i) {
            if (!run[i].key || !remap.contains(run[i].t)) {
                continue;
            }
            if (characterCount(*run[i].key) >= 2 && !text.empty()) {
                text += "  ";
            }
            text += *run[i].key;
            const double start = remap.outputTime(run[i].t);
            chips.push_back(
                {start,
                 i + 1 < run.size() ? remap.outputTime(run[i + 1].t) : start + 0.9,
                 characterCount(text) < 27 ? text : "…" + std::string(lastCharacters(text, 25))});
        }
    }
    return chips;
}

} // namespace zento::test::plain
