#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/SessionBundle.h"

namespace zento::bench {

// Plans of a stretch of a recording, [begin, end) in seconds of its time, at 60 frames a second.

struct Stretch {
    double begin = 0;
    double end = 0;
};

/// The whole recording in the middle of the canvas; the pointer alone moves.
EditPlan stillPlan(const SessionBundle& bundle, Stretch stretch, int width, int height);

/// The same while the camera pans and zooms a little in every frame: `movingZoom` around 1. All of
/// the card's samples change each time, its edges and its shadow wander.
EditPlan movingPlan(const SessionBundle& bundle, Stretch stretch, int width, int height);

/// The plan with everything that moves blurred.
EditPlan withMotionBlur(EditPlan plan);

/// The plan with the recording's webcam in a corner.
enum class WebcamLook { Plain, Enhanced, BlurredBackground };
EditPlan withWebcam(EditPlan plan, const SessionBundle& bundle, WebcamLook look);

/// What the planner makes of the whole recording, 1080p, without a sound.
EditPlan plannedFilm(const SessionBundle& bundle);

// The camera of movingPlan: zoom = 1 + kZoomDepth sin(kZoomRate t), t in seconds.
inline constexpr double kZoomDepth = 0.1;
inline constexpr double kZoomRate = 1.6;

} // namespace zento::bench
