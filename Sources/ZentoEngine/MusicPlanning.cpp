#include "ZentoEngine/MusicPlanning.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zento::EditPlanner {

namespace {

constexpr double kFastSpeed = 1.9; // exclusive
constexpr double kFastDb = -6;
constexpr double kSpeechDb = -9;
constexpr double kGainDb = -11;
constexpr double kGainUnderSpeechDb = -16;
constexpr double kFadeIn = 0.4; // seconds
constexpr double kLongestFadeOut = 1.8;
constexpr double kFadeOutShare = 0.12; // of the film
constexpr double kShortestPeriod = 0.2;
constexpr double kShortestTrim = 2.0;

enum class DuckCause : unsigned char { Fast, Speech };
enum class DuckEdge : unsigned char { Begin, End };

struct DuckEvent {
    double t = 0; // output time
    DuckCause cause = DuckCause::Fast;
    DuckEdge edge = DuckEdge::Begin;
};

std::vector<DuckEvent> duckEvents(
    std::span<const SpeedSegment> segments,
    std::span<const TimeRange> speech,
    const RemapCurve& remap)
{
    std::vector<DuckEvent> events;
    const auto add = [&](double start, double end, DuckCause cause) {
        events.push_back({remap.outputTime(start), cause, DuckEdge::Begin});
        events.push_back({remap.outputTime(end), cause, DuckEdge::End});
    };
    for (const SpeedSegment& segment : segments) {
        if (segment.speed > kFastSpeed) {
            add(segment.sourceStart, segment.sourceEnd, DuckCause::Fast);
        }
    }
    for (const TimeRange& range : speech) {
        if (remap.contains((range.start + range.end) * 0.5)) {
            add(std::max(range.start, 0.0), range.end, DuckCause::Speech);
        }
    }
    std::ranges::stable_sort(events, {}, &DuckEvent::t);
    return events;
}

std::vector<DuckPoint> duckPoints(std::span<const DuckEvent> events)
{
    std::vector<DuckPoint> points;
    int fast = 0; // ranges of each cause that are open
    int speech = 0;
    for (const DuckEvent& event : events) {
        int& open = event.cause == DuckCause::Fast ? fast : speech;
        open = event.edge == DuckEdge::Begin ? open + 1 : std::max(open - 1, 0);
        const double otherwise = fast > 0 ? kFastDb : 0;
        points.push_back({event.t, speech > 0 ? kSpeechDb : otherwise});
    }
    return points;
}

/// Where in the file the music starts: its first beat, or the beat nearest to the trim's start.
double sourceOffset(const MusicInfo& music)
{
    const double phase = music.grid.phase;
    const double period = music.grid.period;
    if (phase < music.start && period > kShortestPeriod) {
        return std::max(phase, phase + std::round((music.start - phase) / period) * period);
    }
    return phase;
}

} // namespace

MusicPlan planMusic(
    const MusicInfo& music,
    std::span<const SpeedSegment> segments,
    std::span<const TimeRange> speech,
    const RemapCurve& remap)
{
    MusicPlan plan;
    plan.file = music.file;
    plan.gainDb = speech.empty() ? kGainDb : kGainUnderSpeechDb;
    plan.sourceOffset = sourceOffset(music);
    plan.fadeIn = kFadeIn;
    plan.fadeOut = std::min(kFadeOutShare * remap.outputDuration(), kLongestFadeOut);
    plan.duckPoints = duckPoints(duckEvents(segments, speech, remap));
    if (music.start + kShortestTrim < music.end) {
        plan.playDuration = music.end - plan.sourceOffset;
    }
    return plan;
}

} // namespace zento::EditPlanner
