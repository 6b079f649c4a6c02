#include "Zento/Timeline/TimelineContents.h"

#include "ZentoCore/Text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

namespace zento {

namespace {

constexpr double kLeastZoom = 1.01;
constexpr double kLead = 0.35;         // seconds the camera moves before its moment
constexpr double kUsualLength = 1.6;   // seconds
constexpr double kKeyframeReach = 0.3; // how near a keyframe is the zoom's
constexpr double kSameZoom = 0.01;
constexpr double kShortestBar = 0.2; // seconds
constexpr double kShortestCutBar = 0.15;
constexpr double kGap = 0.04;
constexpr double kJump = 0.01;        // source seconds
constexpr double kOnBeat = 0.01;      // seconds
constexpr double kSameBeat = 1e-9;    // beats
constexpr double kLeastBeatWidth = 6; // points

struct Extent {
    double start = 0;
    double end = 0;
};

/// Where the zoom that `keyframes[k]` begins ends.
double zoomEnd(std::span<const CameraKeyframe> keyframes, std::size_t k, double duration)
{
    const auto ends = [&](const CameraKeyframe& next) {
        return next.zoom < keyframes[k].zoom - kSameZoom || std::abs(next.zoom - 1) < kSameZoom;
    };
    for (std::size_t i = k + 1; i < keyframes.size(); ++i) {
        if (ends(keyframes[i])) {
            return keyframes[i].tOut;
        }
    }
    return k + 1 < keyframes.size() ? keyframes[k + 1].tOut : duration;
}

Extent extent(
    const FocusMoment& moment,
    double effTime,
    bool enabled,
    const RemapCurve& curve,
    std::span<const CameraKeyframe> keyframes,
    double duration)
{
    const double a = curve.outputTime(effTime) - kLead;
    Extent result = {.start = std::max(a, 0.0)};
    result.end = moment.hold ? std::min(curve.outputTime(effTime + *moment.hold), duration)
                             : std::min(result.start + kUsualLength, duration);
    if (!enabled) {
        return result;
    }
    const auto keyframe = std::ranges::find_if(
        keyframes, [&](const CameraKeyframe& k) { return std::abs(k.tOut - a) < kKeyframeReach; });
    if (keyframe == keyframes.end()) {
        return result;
    }
    result.start = keyframe->tOut;
    if (!moment.hold) {
        const auto index = static_cast<std::size_t>(keyframe - keyframes.begin());
        result.end = zoomEnd(keyframes, index, duration);
    }
    return result;
}

void separate(std::vector<ZoomBar>& bars)
{
    for (std::size_t i = 0; i + 1 < bars.size(); ++i) {
        if (bars[i + 1].tOut < bars[i].tOutEnd) {
            bars[i].tOutEnd = std::max(bars[i].tOut + kShortestCutBar, bars[i + 1].tOut - kGap);
        }
    }
}

} // namespace

std::vector<ZoomBar>
zoomBars(const EditPlan& plan, const RemapCurve& curve, double duration, const Overrides& overrides)
{
    std::vector<CameraKeyframe> keyframes = plan.camera;
    std::ranges::stable_sort(keyframes, {}, &CameraKeyframe::tOut);
    std::vector<ZoomBar> bars;
    for (const FocusMoment& moment : plan.focusMoments.value_or(std::vector<FocusMoment>{})) {
        if (!(moment.zoom > kLeastZoom)) {
            continue;
        }
        const double effTime = moment.effectiveSourceTime.value_or(moment.sourceTime);
        const bool enabled = !overrides.zoomDisabled(moment.sourceTime);
        const Extent at = extent(moment, effTime, enabled, curve, keyframes, duration);
        bars.push_back(
            {.sourceTime = moment.sourceTime,
             .effTime = effTime,
             .tOut = at.start,
             .tOutEnd = std::max(at.start + kShortestBar, at.end),
             .zoom = moment.zoom,
             .enabled = enabled,
             .added = moment.kind == "added",
             .edited = overrides.edit(moment.sourceTime).has_value(),
             .title = moment.title.value_or("")});
    }
    std::ranges::stable_sort(bars, {}, &ZoomBar::tOut);
    separate(bars);
    return bars;
}

std::vector<CutMark> cutMarks(std::span<const SpeedSegment> timeRemap)
{
    std::vector<CutMark> cuts;
    double sum = 0;
    for (std::size_t i = 0; i + 1 < timeRemap.size(); ++i) {
        const SpeedSegment& segment = timeRemap[i];
        sum += (segment.sourceEnd - segment.sourceStart) / segment.speed;
        if (std::abs(timeRemap[i + 1].sourceStart - segment.sourceEnd) > kJump) {
            cuts.push_back({.tOut = sum, .cutAfter = segment.sourceEnd});
        }
    }
    return cuts;
}

std::vector<double> HeardBeats::times() const
{
    std::vector<double> times;
    const double before = std::max(std::ceil(-first / period - kSameBeat), 0.0);
    for (double k = before; period > 0 && first + k * period < end; ++k) {
        times.push_back(first + k * period);
    }
    return times;
}

bool HeardBeats::isOn(double time) const
{
    const double nearest = first + std::round((time - first) / period) * period;
    return time < end + kOnBeat && std::abs(time - nearest) <= kOnBeat;
}

std::vector<double> thinnedBeats(std::span<const double> beats, double pointsPerBeat)
{
    std::size_t step = 1;
    while (step < beats.size() && pointsPerBeat * static_cast<double>(step) < kLeastBeatWidth) {
        step *= 2;
    }
    std::vector<double> shown;
    for (std::size_t i = 0; i < beats.size(); i += step) {
        shown.push_back(beats[i]);
    }
    return shown;
}

std::vector<TimelineWord>
timelineWords(std::span<const TranscriptSegment> transcript, const RemapCurve* curve)
{
    const auto strip = [&](double t) { return curve == nullptr ? t : curve->outputTime(t); };
    std::vector<TimelineWord> words;
    for (std::size_t i = 0; i < transcript.size(); ++i) {
        const TranscriptSegment& segment = transcript[i];
        if (!trimmed(segment.text).empty()) {
            words.push_back(
                {.index = static_cast<int>(i),
                 .tOut = strip(segment.start),
                 .tOutEnd = strip(segment.end),
                 .text = segment.text});
        }
    }
    return words;
}

std::vector<double> thumbnailTimes(const RemapCurve& curve, double duration, int count)
{
    std::vector<double> times;
    for (int i = 0; i < count && duration > 0; ++i) {
        times.push_back(curve.sourceTime(duration * (i + 0.5) / count));
    }
    return times;
}

} // namespace zento
