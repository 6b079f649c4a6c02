#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/InputEvent.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoMedia/VideoFrame.h"
#include "ZentoRender/CameraRig.h"
#include "ZentoRender/FrameRecipe.h"
#include "ZentoRender/FrameSequence.h"

#include <memory>
#include <optional>
#include <vector>

namespace zento {

/// The layers of a film's main part at any time, in any order, with the values that a sequence of
/// frames a sixtieth of a second apart has there: what an export of 60 frames a second shows.
///
/// The camera's springs have no closed form, so a time is reached by replaying their steps from the
/// start. They are kept every second, once; an hour of steps takes some milliseconds the first
/// time and no time seeks back further than a second after that. All else that a frame hands on is
/// forgotten after two seconds, which are replayed whole.
///
/// Threading: one thread at a time.
class FrameReplay {
public:
    static constexpr double kStep = 1.0 / 60; // seconds

    /// `source`: the master's size in pixels, also where the pictures come from a proxy.
    FrameReplay(
        const EditPlan& plan,
        const std::vector<InputEvent>& events,
        std::shared_ptr<const RemapCurve> curve,
        VideoSize source);

    /// `tOut`: seconds within the main part, [0, ∞). `frame` and `webcam` are what the recording's
    /// movies show at the curve's source time.
    FrameLayers layers(double tOut, VideoFrame frame, std::optional<VideoFrame> webcam);

private:
    const CameraRig::Springs& keptSprings(int checkpoint);
    FrameTime timeOf(int step) const;

    std::shared_ptr<const RemapCurve> m_curve;
    FrameSequence m_sequence;
    CameraRig m_rig;                           // after the last checkpoint's steps
    std::vector<CameraRig::Springs> m_springs; // before step i * kStepsKept
};

} // namespace zento
