#pragma once

#include "Zento/Timeline/TimelineContents.h"
#include "Zento/Timeline/ZoomEditing.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/RemapCurve.h"

#include <memory>
#include <optional>
#include <variant>

namespace zento {

// What a pointer or a key does on the edit timeline, as pure functions from positions to edits.
// Positions and widths are points on the strip, x from its left edge.

/// The strip's time, and how it lies over the source. Without a curve, while nothing is planned,
/// times pass through unchanged.
struct TimelineScale {
    double width = 0;    // points
    double duration = 0; // strip seconds
    std::shared_ptr<const RemapCurve> curve;
    double recorded = 0; // seconds of the recording

    double timeAt(double x) const;      // [0, duration]
    double position(double time) const; // [0, width]
    double sourceTime(double stripTime) const;
    double outputTime(double sourceTime) const;
};

/// Seconds between two ticks of the ruler: the first of the usual ones that is 64 points or wider.
double rulerStep(const TimelineScale& scale);

// The trim.

double trimEndOnStrip(const TimelineScale& scale, const SavedOverrides& edits);
bool isTrimmed(const TimelineScale& scale, const SavedOverrides& edits);

/// What a press on the video track takes hold of.
struct TrimDrag {
    enum class Kind { Move, Start, End };
    Kind kind = Kind::Move;
    double grabOffset = 0; // strip seconds behind the trim's start, of a move

    bool operator==(const TrimDrag&) const = default;
};

/// A handle is taken from less than 22 points away, the start's first; outside of both the nearer
/// one; between them the kept stretch.
TrimDrag beginTrim(const TimelineScale& scale, const SavedOverrides& edits, double x);

/// The edit for a pointer at `x`. Nothing for the kept stretch until it was moved by more than 4
/// points: `translation` is from where the drag began. `edits` are the present ones.
std::optional<EditStep> trimTo(
    const TimelineScale& scale,
    const SavedOverrides& edits,
    const TrimDrag& drag,
    double x,
    double translation);

/// A handle moved by seconds of the strip, as an arrow key does.
EditStep nudgeTrim(
    const TimelineScale& scale, const SavedOverrides& edits, TrimDrag::Kind kind, double seconds);

EditStep resetTrim(const TimelineScale& scale, SavedOverrides edits);

// Zoom blocks.

enum class ZoomDrag { Move, Resize };

/// A drag's movement so far: the block follows it, and nothing is edited before its end.
struct ZoomMovement {
    ZoomDrag kind = ZoomDrag::Move;
    double deltaX = 0;
};

struct BarFrame {
    double x = 0;
    double width = 0; // at least 10
};

BarFrame barFrame(
    const TimelineScale& scale, const ZoomBar& bar, const std::optional<ZoomMovement>& movement);

/// Whether a press `x` from the block's left edge moves or stretches it.
ZoomDrag zoomDragAt(double barWidth, double x);

/// [0, 1]: how strongly a block is tinted.
double zoomTint(double zoom);

EditStep endZoomDrag(
    const TimelineScale& scale,
    const SavedOverrides& edits,
    const ZoomBar& bar,
    const ZoomMovement& movement);

/// A block moved or stretched by seconds of the strip, as an arrow key does.
EditStep nudgeZoom(
    const TimelineScale& scale,
    const SavedOverrides& edits,
    const ZoomBar& bar,
    ZoomDrag kind,
    double seconds);

EditStep
addZoomAt(const TimelineScale& scale, const SavedOverrides& edits, double stripTime, double level);

} // namespace zento
