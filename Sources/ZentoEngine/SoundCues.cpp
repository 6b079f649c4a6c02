#include "ZentoEngine/SoundCues.h"

#include <cmath>

namespace zento::EditPlanner {

namespace {

constexpr double kBigZoomChange = 0.3; // inclusive
constexpr double kClickGain = 1.0;
constexpr double kWhooshGain = 0.7;

} // namespace

std::vector<ClickMarker> clickMarkers(const EventLog& events, const RemapCurve& remap)
{
    std::vector<ClickMarker> markers;
    for (const InputEvent* click : events.clicks) {
        if (remap.contains(click->t)) {
            markers.push_back({click->t, click->pos});
        }
    }
    return markers;
}

std::vector<SFXCue> soundCues(
    std::span<const ClickMarker> clicks,
    std::span<const CameraKeyframe> camera,
    const RemapCurve& remap,
    const PlanConfig& config)
{
    std::vector<SFXCue> cues;
    if (config.clickSFX) {
        for (const ClickMarker& click : clicks) {
            cues.push_back({remap.outputTime(click.t), "click", kClickGain});
        }
    }
    if (config.whooshSFX) {
        double previousZoom = 1;
        for (const CameraKeyframe& keyframe : camera) {
            if (std::abs(keyframe.zoom - previousZoom) >= kBigZoomChange) {
                cues.push_back({keyframe.tOut, "whoosh", kWhooshGain});
            }
            previousZoom = keyframe.zoom;
        }
    }
    return cues;
}

} // namespace zento::EditPlanner
