#include "Zento/Timeline/TimelineGestures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace zento {

namespace {

constexpr double kShortestStrip = 0.001; // seconds
constexpr double kHandleReach = 22;      // points
constexpr double kClickReach = 4;        // points a click may wander
constexpr double kShortestKept = 0.5;    // source seconds
constexpr double kUnset = 0.05;          // a trim up to this counts as none
constexpr double kNarrowestBar = 10;     // points
constexpr double kLeastTickWidth = 64;   // points

double stripLength(const TimelineScale& scale)
{
    return std::max(scale.duration, kShortestStrip);
}

double trimEnd(const TimelineScale& scale, const SavedOverrides& edits)
{
    return edits.trimEnd > kUnset ? edits.trimEnd : scale.recorded;
}

EditStep trimmedTo(SavedOverrides edits, double start, double end)
{
    edits.trimStart = start;
    edits.trimEnd = end;
    return {std::move(edits), EditName::kTrim};
}

/// The handle's edit for a source time.
EditStep handleTo(
    const TimelineScale& scale, const SavedOverrides& edits, TrimDrag::Kind kind, double source)
{
    if (kind == TrimDrag::Kind::Start) {
        const double limit = trimEnd(scale, edits) - kShortestKept;
        return trimmedTo(edits, std::min(std::max(source, 0.0), limit), edits.trimEnd);
    }
    const double end = std::max(std::min(source, scale.recorded), edits.trimStart + kShortestKept);
    return trimmedTo(edits, edits.trimStart, end);
}

/// The kept stretch from a strip time on, its length on the strip kept.
EditStep stretchTo(const TimelineScale& scale, const SavedOverrides& edits, double start)
{
    const double span = trimEndOnStrip(scale, edits) - scale.outputTime(edits.trimStart);
    const double placed = std::min(std::max(start, 0.0), stripLength(scale) - span);
    return trimmedTo(edits, scale.sourceTime(placed), scale.sourceTime(placed + span));
}

} // namespace

double TimelineScale::timeAt(double x) const
{
    return std::clamp(width < 1 ? x : x / width, 0.0, 1.0) * stripLength(*this);
}

double TimelineScale::position(double time) const
{
    return width * std::clamp(time / stripLength(*this), 0.0, 1.0);
}

double TimelineScale::sourceTime(double stripTime) const
{
    return curve ? curve->sourceTime(stripTime) : stripTime;
}

double TimelineScale::outputTime(double source) const
{
    return curve ? curve->outputTime(source) : source;
}

double rulerStep(const TimelineScale& scale)
{
    constexpr std::array<double, 8> kSteps{1, 2, 5, 10, 15, 30, 60, 120};
    for (const double step : kSteps) {
        if (scale.position(step) >= kLeastTickWidth) {
            return step;
        }
    }
    return kSteps.back();
}

double trimEndOnStrip(const TimelineScale& scale, const SavedOverrides& edits)
{
    return std::min(scale.outputTime(trimEnd(scale, edits)), stripLength(scale));
}

bool isTrimmed(const TimelineScale& scale, const SavedOverrides& edits)
{
    return edits.trimStart > kUnset
           || (edits.trimEnd > kUnset && edits.trimEnd < scale.recorded - kUnset);
}

TrimDrag beginTrim(const TimelineScale& scale, const SavedOverrides& edits, double x)
{
    const double start = scale.outputTime(edits.trimStart);
    const double startX = scale.position(start);
    const double endX = scale.position(trimEndOnStrip(scale, edits));
    const double toStart = std::abs(x - startX);
    const double toEnd = std::abs(x - endX);
    if (toStart < kHandleReach) {
        return {.kind = TrimDrag::Kind::Start};
    }
    if (toEnd < kHandleReach) {
        return {.kind = TrimDrag::Kind::End};
    }
    if (startX < x && x < endX) {
        return {.kind = TrimDrag::Kind::Move, .grabOffset = scale.timeAt(x) - start};
    }
    return {.kind = toStart <= toEnd ? TrimDrag::Kind::Start : TrimDrag::Kind::End};
}

std::optional<EditStep> trimTo(
    const TimelineScale& scale,
    const SavedOverrides& edits,
    const TrimDrag& drag,
    double x,
    double translation)
{
    const double time = scale.timeAt(x);
    if (drag.kind != TrimDrag::Kind::Move) {
        return handleTo(scale, edits, drag.kind, scale.sourceTime(time));
    }
    if (std::abs(translation) <= kClickReach) {
        return std::nullopt;
    }
    return stretchTo(scale, edits, time - drag.grabOffset);
}

EditStep nudgeTrim(
    const TimelineScale& scale, const SavedOverrides& edits, TrimDrag::Kind kind, double seconds)
{
    const double start = scale.outputTime(edits.trimStart);
    switch (kind) {
    case TrimDrag::Kind::Move:
        return stretchTo(scale, edits, start + seconds);
    case TrimDrag::Kind::Start:
        return handleTo(scale, edits, kind, scale.sourceTime(start + seconds));
    case TrimDrag::Kind::End:
        return handleTo(
            scale, edits, kind, scale.sourceTime(trimEndOnStrip(scale, edits) + seconds));
    }
    std::unreachable();
}

EditStep resetTrim(const TimelineScale& scale, SavedOverrides edits)
{
    return trimmedTo(std::move(edits), 0, scale.recorded);
}

BarFrame barFrame(
    const TimelineScale& scale, const ZoomBar& bar, const std::optional<ZoomMovement>& movement)
{
    const auto by = [&](ZoomDrag kind) {
        return movement && movement->kind == kind ? movement->deltaX : 0;
    };
    const double left = scale.position(bar.tOut);
    const double width = scale.position(bar.tOutEnd) - left + by(ZoomDrag::Resize);
    return {.x = left + by(ZoomDrag::Move), .width = std::max(width, kNarrowestBar)};
}

ZoomDrag zoomDragAt(double barWidth, double x)
{
    const double edge = std::clamp(barWidth / 3, 4.0, 10.0);
    return x > barWidth - edge ? ZoomDrag::Resize : ZoomDrag::Move;
}

double zoomTint(double zoom)
{
    return std::clamp((zoom - 1) / 1.1, 0.0, 1.0);
}

EditStep endZoomDrag(
    const TimelineScale& scale,
    const SavedOverrides& edits,
    const ZoomBar& bar,
    const ZoomMovement& movement)
{
    const auto sourceAt = [&](double stripTime, double deltaX) {
        return scale.sourceTime(scale.timeAt(scale.position(stripTime) + deltaX));
    };
    if (movement.kind == ZoomDrag::Resize) {
        const double end = sourceAt(bar.tOutEnd, movement.deltaX);
        return resizeZoom(edits, bar.sourceTime, end - bar.effTime);
    }
    // The difference of two readings, so that a block dropped where it stood keeps its time.
    const double moved = sourceAt(bar.tOut, movement.deltaX) - sourceAt(bar.tOut, 0);
    return moveZoom(edits, bar.sourceTime, moved + bar.effTime);
}

EditStep nudgeZoom(
    const TimelineScale& scale,
    const SavedOverrides& edits,
    const ZoomBar& bar,
    ZoomDrag kind,
    double seconds)
{
    const double points = seconds / stripLength(scale) * scale.width;
    return endZoomDrag(scale, edits, bar, {.kind = kind, .deltaX = points});
}

EditStep
addZoomAt(const TimelineScale& scale, const SavedOverrides& edits, double stripTime, double level)
{
    return addZoom(edits, scale.sourceTime(stripTime), level);
}

} // namespace zento
