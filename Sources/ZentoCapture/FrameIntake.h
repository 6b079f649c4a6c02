#pragma once

#include "ZentoCapture/FrameSource.h"
#include "ZentoCapture/ScreenWriter.h"

#include <atomic>
#include <optional>

namespace zento {

/// Decides what becomes of a captured frame, and keeps the recording's clock.
///
/// Threading: `handle` on the capture's thread; the counters from any thread; the rest while no
/// frame can come.
class FrameIntake {
public:
    /// Frames are ignored while there is no writer. Not owned.
    void setWriter(ScreenWriter* writer) { m_writer = writer; }

    FrameVerdict handle(const CapturedFrame& frame);

    std::optional<double> epoch() const { return m_epoch; }       // host time of the first frame
    double lastPTS() const { return m_lastPTS; }                  // host time of the latest frame
    int frameCount() const { return m_frameCount; }               // handed to the writer
    int droppedFrameCount() const { return m_droppedFrameCount; } // the writer was not ready

private:
    ScreenWriter* m_writer = nullptr;
    std::optional<double> m_epoch;
    double m_lastPTS = 0;
    std::atomic<int> m_frameCount = 0;
    std::atomic<int> m_droppedFrameCount = 0;
};

} // namespace zento
