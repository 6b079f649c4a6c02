#include "ZentoRender/FrameReplay.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {
namespace {

constexpr int kStepsKept = 60; // between two checkpoints
constexpr int kRemembered = static_cast<int>(FrameSequence::kMemory / FrameReplay::kStep) + 2;

/// The last step whose time is not after `tOut`. Times of steps are products, never sums.
int lastStep(double tOut)
{
    int step = std::max(static_cast<int>(tOut / FrameReplay::kStep), 0);
    while (FrameReplay::kStep * (step + 1) <= tOut)
        ++step;
    while (step > 0 && FrameReplay::kStep * step > tOut)
        --step;
    return step;
}

} // namespace

FrameReplay::FrameReplay(
    const EditPlan& plan,
    const std::vector<InputEvent>& events,
    std::shared_ptr<const RemapCurve> curve,
    VideoSize source)
    : m_curve(std::move(curve))
    , m_sequence(plan, events, *m_curve, source, kStep)
    , m_rig(plan.camera, source.width, source.height)
    , m_springs{m_rig.springs()}
{
}

FrameLayers FrameReplay::layers(double tOut, VideoFrame frame, std::optional<VideoFrame> webcam)
{
    const int last = lastStep(tOut);
    const int checkpoint = std::max(last - kRemembered, 0) / kStepsKept;
    FrameSequence::State state = m_sequence.start();
    state.springs = keptSprings(checkpoint);
    m_sequence.putBack(state);
    for (int step = checkpoint * kStepsKept; step < last; ++step)
        m_sequence.skip(timeOf(step));
    ScheduledFrame scheduled = {
        .tOut = tOut,
        .sourceTime = m_curve->sourceTime(tOut),
        .frame = std::move(frame),
        .webcam = std::move(webcam)};
    return m_sequence.next(std::move(scheduled), kStep * last);
}

FrameTime FrameReplay::timeOf(int step) const
{
    const double t = kStep * step;
    return {.step = t, .tOut = t, .sourceTime = m_curve->sourceTime(t)};
}

const CameraRig::Springs& FrameReplay::keptSprings(int checkpoint)
{
    while (m_springs.size() <= static_cast<std::size_t>(checkpoint)) {
        const int first = (static_cast<int>(m_springs.size()) - 1) * kStepsKept;
        for (int step = first; step < first + kStepsKept; ++step)
            m_rig.step(kStep * step, kStep);
        m_springs.push_back(m_rig.springs());
    }
    return m_springs[static_cast<std::size_t>(checkpoint)];
}

} // namespace zento
