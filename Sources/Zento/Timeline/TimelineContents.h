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

/// Where the source jumps.
struct CutMark {
    double tOut = 0;     // strip time
    double cutAfter = 0; // source seconds: the last moment before it
    bool isOnBeat = false;

    bool operator==(const CutMark&) const = default;
};

/// Ramps are passed over: these are marks on a drawn strip.
std::vector<CutMark> cutMarks(std::span<const SpeedSegment> timeRemap);

/// When music is heard to beat: from `first` on every `period` seconds, up to `end`. `first` may
/// lie before the film's beginning, and nothing before that is listed.
struct HeardBeats {
    double first = 0; // film time
    double period = 0;
    double end = 0;

    std::vector<double> times() const;
    bool isOn(double time) const; // within a hundredth of a second
};

/// Every second, fourth, eighth … of the beats, so that two marks lie 6 points and more apart when
/// two beats lie `pointsPerBeat` apart.
std::vector<double> thinnedBeats(std::span<const double> beats, double pointsPerBeat);

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
