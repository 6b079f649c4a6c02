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

/// When a frame of the main part is.
struct FrameTime {
    double step = 0;       // seconds: when the camera takes its step; the frame's own in an export
    double tOut = 0;       // seconds within the main part
    double sourceTime = 0; // seconds
};

/// Turns the frames of the main part into layers, one after the other in film order: it carries
/// what a frame hands on to the next one, the camera's movement, its motion and the pointer's
/// idleness.
///
/// Threading: one thread at a time.
class FrameSequence {
public:
    /// What a frame hands on to the next one.
    struct State {
        CameraRig::Springs springs;
        PointerIdleness idleness;
        std::optional<ShownCard> shown; // in the frame before
    };

    /// `secondsPerFrame`: of the camera's step.
    FrameSequence(
        const EditPlan& plan,
        const std::vector<InputEvent>& events,
        const RemapCurve& curve,
        VideoSize source,
        double secondsPerFrame);

    /// The next frame of an export.
    FrameLayers next(ScheduledFrame scheduled);

    /// The next frame, its camera step apart from its time.
    FrameLayers next(ScheduledFrame scheduled, double step);

    /// Goes past a frame as `next` does.
    void skip(const FrameTime& time);

    /// As at the start; later springs may be put in.
    const State& start() const { return m_start; }
    void putBack(const State& state);

    /// What the pointer's idleness at a frame depends on is within this time before it.
    static constexpr double kMemory = PointerIdleness::kMemory;

private:
    struct Moved {
        CameraRig::State camera;
        std::optional<Motion> motion;
        std::optional<CursorState> cursor;
    };
    Moved advance(const FrameTime& time);
    std::optional<CursorState> cursor(const FrameTime& time);

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
    State m_start;
};

} // namespace zento
