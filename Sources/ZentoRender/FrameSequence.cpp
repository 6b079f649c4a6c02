#include "ZentoRender/FrameSequence.h"

#include <utility>

namespace zento {

FrameSequence::FrameSequence(
    const EditPlan& plan,
    const std::vector<InputEvent>& events,
    const RemapCurve& curve,
    VideoSize source)
    : m_output(plan.output)
    , m_style(plan.style)
    , m_sourceSize{static_cast<double>(source.width), static_cast<double>(source.height)}
    , m_webcam(plan.webcam)
    , m_secondsPerFrame(1 / plan.output.fps)
    , m_track(cursorTrack(plan, events))
    , m_clicks(filmClicks(plan, events, curve))
    , m_keystrokes(plan.keystrokes.value_or(std::vector<KeystrokeChip>{}))
    , m_captions(plan.captions.value_or(std::vector<CaptionChip>{}))
    , m_chapters(plan.chapters.value_or(std::vector<ChapterMarker>{}))
    , m_rig(plan.camera, source.width, source.height)
{
}

FrameLayers FrameSequence::next(ScheduledFrame scheduled)
{
    const double tOut = scheduled.tOut;
    const CameraRig::State camera = m_rig.step(tOut, m_secondsPerFrame);
    const ShownCard shown = {
        .sourceTime = scheduled.sourceTime,
        .card = cardFor(camera, m_output, m_style, m_sourceSize)};
    const auto motion = motionSince(m_shown, shown, camera.center, m_output.height);
    m_shown = shown;
    std::optional<WebcamLayer> webcam;
    if (scheduled.webcam && m_webcam)
        webcam = WebcamLayer{*std::move(scheduled.webcam), *m_webcam};
    return {
        .source = std::move(scheduled.frame),
        .camera = camera,
        .cursor = cursor(tOut, scheduled.sourceTime),
        .ripples = ripples(m_clicks, tOut),
        .webcam = std::move(webcam),
        .motion = motion,
        .keystroke = keystrokeAt(m_keystrokes, tOut),
        .caption = captionAt(m_captions, tOut),
        .chapter = chapterAt(m_chapters, tOut)};
}

std::optional<CursorState> FrameSequence::cursor(double tOut, double sourceTime)
{
    auto place = interpolate(m_track, sourceTime);
    if (!place)
        return std::nullopt;
    const double pulse = clickPulse(m_clicks, tOut);
    const double alpha = m_style.cursorAutoHide ? m_idleness.step(tOut, place->pos, pulse) : 1;
    return CursorState{
        .pos = place->pos, .style = std::move(place->style), .clickPulse = pulse, .alpha = alpha};
}

} // namespace zento
