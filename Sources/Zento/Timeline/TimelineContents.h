#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/RemapCurve.h"

#include <span>
#include <string>
#include <vector>

namespace zento {

// What the edit timeline draws, worked out of the plan with the trim not applied. Strip time is
// output seconds of that plan. Pure.

/// One block of the zoom lane.
struct ZoomBar {
    double sourceTime = 0; // the zoom's identity
    double effTime = 0;    // source seconds: where it is after a move
    double tOut = 0;       // strip time
    double tOutEnd = 0;
    double zoom = 1;
    bool enabled = true;
    bool added = false;
    bool edited = false;
    std::string title; // what was clicked or typed into; may be empty

    bool operator==(const ZoomBar&) const = default;
};

/// The blocks of all zooms of more than 1.01, ascending by `tOut`. Their ends follow the camera:
/// a zoom without a hold of its own lasts until the camera goes wide or aims anew.
std::vector<ZoomBar> zoomBars(
    const EditPlan& plan, const RemapCurve& curve, double duration, const Overrides& overrides);

/// Strip times where the source jumps. Ramps are passed over: these are marks on a drawn strip.
std::vector<double> cutTimes(std::span<const SpeedSegment> timeRemap);

/// A caption of the word lane.
struct TimelineWord {
    int index = 0; // in the whole transcript
    double tOut = 0;
    double tOutEnd = 0;
    std::string text;

    bool operator==(const TimelineWord&) const = default;
};

/// The segments of the transcript that say something.
std::vector<TimelineWord>
timelineWords(std::span<const TranscriptSegment> transcript, const RemapCurve* curve);

/// Source times of the strip's pictures, in the middle of `count` equal parts; none without a
/// duration.
std::vector<double> thumbnailTimes(const RemapCurve& curve, double duration, int count);

} // namespace zento
