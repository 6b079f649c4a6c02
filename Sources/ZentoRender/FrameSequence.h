#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/InputEvent.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoMedia/VideoFrame.h"
#include "ZentoRender/CameraRig.h"
#include "ZentoRender/FrameRecipe.h"
#include "ZentoRender/FrameValues.h"

#include <optional>
#include <vector>

namespace zento {

/// What the recording's movies show in one frame of the film's main part.
struct ScheduledFrame {
    double tOut = 0;       // seconds within the main part
    double sourceTime = 0; // seconds
    VideoFrame frame;
    std::optional<VideoFrame> webcam;
};

/// Turns the frames of the main part into layers, one after the other in film order: it carries
/// what a frame hands on to the next one, the camera's movement, its motion and the pointer's
/// idleness.
///
/// Threading: one thread at a time.
class FrameSequence {
public:
    FrameSequence(
        const EditPlan& plan,
        const std::vector<InputEvent>& events,
        const RemapCurve& curve,
        VideoSize source);

    FrameLayers next(ScheduledFrame scheduled);

private:
    std::optional<CursorState> cursor(double tOut, double sourceTime);

    OutputSpec m_output;
    StyleSpec m_style;
    Vec2 m_sourceSize;
    std::optional<WebcamPlan> m_webcam;
    double m_secondsPerFrame;
    std::vector<CursorSample> m_track;
    std::vector<FilmClick> m_clicks;
    std::vector<KeystrokeChip> m_keystrokes;
    std::vector<CaptionChip> m_captions;
    std::vector<ChapterMarker> m_chapters;
    CameraRig m_rig;
    PointerIdleness m_idleness;
    std::optional<ShownCard> m_shown; // in the frame before
};

} // namespace zento
