#pragma once

#include "Zento/Timeline/ZoomEditing.h"
#include "ZentoCore/Overrides.h"

namespace zento {

// The stretch of a music track that the film uses, chosen on a strip of the whole track, as pure
// functions from positions to edits. Positions are points from the strip's left edge, times seconds
// into the track.

struct TrackScale {
    double width = 0;    // points
    double duration = 0; // seconds of the track; 0 while it is not known

    double timeAt(double x) const;      // [0, duration]
    double position(double time) const; // [0, width]
};

/// Shorter ones count as none to the planner, which plays the track to its end.
inline constexpr double kShortestSection = 2.1; // seconds

struct MusicSection {
    double start = 0;
    double end = 0;

    bool operator==(const MusicSection&) const = default;
};

/// What is used, with edges that are not set at the track's own.
MusicSection musicSection(const SavedOverrides& edits, double duration);

/// Whether it is less than the whole track.
bool isSectionChosen(const SavedOverrides& edits, double duration);

/// What a press takes hold of.
struct SectionDrag {
    enum class Kind { Move, Start, End };
    Kind kind = Kind::Move;
    double grabOffset = 0; // seconds from what was taken, or the section's start, to the pointer

    bool operator==(const SectionDrag&) const = default;
};

/// The nearer edge from less than 10 points away, less in a narrow section, without a jump, or from
/// anywhere outside, whence it comes to the pointer; within the section, all of it.
SectionDrag beginSection(const TrackScale& scale, const SavedOverrides& edits, double x);

/// The edit for a pointer at `x`. An edge stops `kShortestSection` from the other one, a move at
/// the track's ends. An edge at the track's own is unset.
EditStep
sectionTo(const TrackScale& scale, const SavedOverrides& edits, const SectionDrag& drag, double x);

/// The same by seconds, as an arrow key does.
EditStep nudgeSection(
    const TrackScale& scale, const SavedOverrides& edits, SectionDrag::Kind kind, double seconds);

/// The whole track.
EditStep resetSection(SavedOverrides edits);

} // namespace zento
