#include "ZentoCapture/FrameIntake.h"

namespace zento {

FrameVerdict FrameIntake::handle(const CapturedFrame& frame)
{
    if (frame.picture.data == nullptr || frame.status != FrameStatus::Complete || !m_writer) {
        return FrameVerdict::Taken;
    }
    if (!m_epoch) {
        m_epoch = frame.time;
    }
    m_lastPTS = frame.time;
    if (m_writer->append(frame.picture, frame.time - *m_epoch) == AppendResult::NotReady) {
        ++m_droppedFrameCount;
        return FrameVerdict::Refused;
    }
    ++m_frameCount;
    return FrameVerdict::Taken;
}

} // namespace zento
