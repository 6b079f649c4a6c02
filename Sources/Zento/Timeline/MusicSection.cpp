#include "Zento/Timeline/MusicSection.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {

namespace {

constexpr double kUnset = 0.05;   // seconds; an edge up to this is not set
constexpr double kEdgeReach = 10; // points
constexpr double kLeastReach = 4;

/// Edges at the track's ends are unset: another track then starts whole.
EditStep placed(SavedOverrides edits, double duration, double start, double end)
{
    edits.musicStart = start > kUnset ? start : 0;
    edits.musicEnd = end < duration - kUnset ? end : 0;
    return {std::move(edits), EditName::kMusicSection};
}

EditStep edgeTo(const SavedOverrides& edits, double duration, SectionDrag::Kind kind, double time)
{
    const MusicSection section = musicSection(edits, duration);
    if (kind == SectionDrag::Kind::Start) {
        const double last = std::max(section.end - kShortestSection, 0.0);
        return placed(edits, duration, std::clamp(time, 0.0, last), section.end);
    }
    const double first = std::min(section.start + kShortestSection, duration);
    return placed(edits, duration, section.start, std::clamp(time, first, duration));
}

EditStep movedTo(const SavedOverrides& edits, double duration, double start)
{
    const MusicSection section = musicSection(edits, duration);
    const double length = section.end - section.start;
    const double begin = std::clamp(start, 0.0, std::max(duration - length, 0.0));
    return placed(edits, duration, begin, begin + length);
}

} // namespace

double TrackScale::timeAt(double x) const
{
    return width < 1 ? 0 : std::clamp(x / width, 0.0, 1.0) * duration;
}

double TrackScale::position(double time) const
{
    return duration > 0 ? width * std::clamp(time / duration, 0.0, 1.0) : 0;
}

MusicSection musicSection(const SavedOverrides& edits, double duration)
{
    const double start = edits.musicStart > kUnset ? std::min(edits.musicStart, duration) : 0;
    const bool ends = edits.musicEnd > kUnset && edits.musicEnd > start;
    return {.start = start, .end = ends ? std::min(edits.musicEnd, duration) : duration};
}

bool isSectionChosen(const SavedOverrides& edits, double duration)
{
    return musicSection(edits, duration) != MusicSection{.start = 0, .end = duration};
}

SectionDrag beginSection(const TrackScale& scale, const SavedOverrides& edits, double x)
{
    const MusicSection section = musicSection(edits, scale.duration);
    const double startX = scale.position(section.start);
    const double endX = scale.position(section.end);
    const double toStart = std::abs(x - startX);
    const double toEnd = std::abs(x - endX);
    const bool isInside = startX < x && x < endX;
    // Of a narrow section something has to be left to move it by.
    const double reach =
        isInside ? std::clamp((endX - startX) / 3, kLeastReach, kEdgeReach) : kEdgeReach;
    const bool isNear = std::min(toStart, toEnd) < reach;
    const double time = scale.timeAt(x);
    if (isInside && !isNear) {
        return {.kind = SectionDrag::Kind::Move, .grabOffset = time - section.start};
    }
    const bool isStart = toStart <= toEnd;
    return {
        .kind = isStart ? SectionDrag::Kind::Start : SectionDrag::Kind::End,
        .grabOffset = isNear ? time - (isStart ? section.start : section.end) : 0};
}

EditStep
sectionTo(const TrackScale& scale, const SavedOverrides& edits, const SectionDrag& drag, double x)
{
    const double time = scale.timeAt(x) - drag.grabOffset;
    return drag.kind == SectionDrag::Kind::Move ? movedTo(edits, scale.duration, time)
                                                : edgeTo(edits, scale.duration, drag.kind, time);
}

EditStep nudgeSection(
    const TrackScale& scale, const SavedOverrides& edits, SectionDrag::Kind kind, double seconds)
{
    const MusicSection section = musicSection(edits, scale.duration);
    switch (kind) {
    case SectionDrag::Kind::Move:
        return movedTo(edits, scale.duration, section.start + seconds);
    case SectionDrag::Kind::Start:
        return edgeTo(edits, scale.duration, kind, section.start + seconds);
    case SectionDrag::Kind::End:
        return edgeTo(edits, scale.duration, kind, section.end + seconds);
    }
    std::unreachable();
}

EditStep resetSection(SavedOverrides edits)
{
    edits.musicStart = 0;
    edits.musicEnd = 0;
    return {std::move(edits), EditName::kMusicSection};
}

} // namespace zento
