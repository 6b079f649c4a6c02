#include "ZentoRender/FrameSequence.h"

#include <utility>

namespace zento {

FrameSequence::FrameSequence(
    const EditPlan& plan,
    const std::vector<InputEvent>& events,
    const RemapCurve& curve,
    VideoSize source,
    double secondsPerFrame)
    : m_output(plan.output)
    , m_style(plan.style)
    , m_sourceSize{static_cast<double>(source.width), static_cast<double>(source.height)}
    , m_webcam(plan.webcam)
    , m_secondsPerFrame(secondsPerFrame)
    , m_track(cursorTrack(plan, events))
    , m_clicks(filmClicks(plan, events, curve))
    , m_keystrokes(plan.keystrokes.value_or(std::vector<KeystrokeChip>{}))
    , m_captions(plan.captions.value_or(std::vector<CaptionChip>{}))
    , m_chapters(plan.chapters.value_or(std::vector<ChapterMarker>{}))
    , m_rig(plan.camera, source.width, source.height)
    , m_start{.springs = m_rig.springs()}
{
}

FrameLayers FrameSequence::next(ScheduledFrame scheduled)
{
    const double step = scheduled.tOut;
    return next(std::move(scheduled), step);
}

FrameLayers FrameSequence::next(ScheduledFrame scheduled, double step)
{
    const double tOut = scheduled.tOut;
    Moved moved = advance({.step = step, .tOut = tOut, .sourceTime = scheduled.sourceTime});
    std::optional<WebcamLayer> webcam;
    if (scheduled.webcam && m_webcam)
        webcam = WebcamLayer{*std::move(scheduled.webcam), *m_webcam};
    return {
        .source = std::move(scheduled.frame),
        .camera = moved.camera,
        .cursor = std::move(moved.cursor),
        .ripples = ripples(m_clicks, tOut),
        .webcam = std::move(webcam),
        .motion = moved.motion,
        .keystroke = keystrokeAt(m_keystrokes, tOut),
        .caption = captionAt(m_captions, tOut),
        .chapter = chapterAt(m_chapters, tOut)};
}

void FrameSequence::skip(const FrameTime& time)
{
    advance(time);
}

void FrameSequence::putBack(const State& state)
{
    m_rig.putBack(state.springs);
    m_idleness = state.idleness;
    m_shown = state.shown;
}

FrameSequence::Moved FrameSequence::advance(const FrameTime& time)
{
    const CameraRig::State camera = m_rig.step(time.step, m_secondsPerFrame);
    const ShownCard shown = {
        .sourceTime = time.sourceTime, .card = cardFor(camera, m_output, m_style, m_sourceSize)};
    const auto motion = motionSince(m_shown, shown, camera.center, m_output.height);
    m_shown = shown;
    return {.camera = camera, .motion = motion, .cursor = cursor(time)};
}

std::optional<CursorState> FrameSequence::cursor(const FrameTime& time)
{
    auto place = interpolate(m_track, time.sourceTime);
    if (!place)
        return std::nullopt;
    const double pulse = clickPulse(m_clicks, time.tOut);
    const double alpha = m_style.cursorAutoHide ? m_idleness.step(time.tOut, place->pos, pulse) : 1;
    return CursorState{
        .pos = place->pos, .style = std::move(place->style), .clickPulse = pulse, .alpha = alpha};
}

} // namespace zento
