#include "Zento/Desktop/DeviceCapture.h"

#include "ZentoCapture/CaptureSession.h"
#include "ZentoCapture/Desktop.h"

#include <utility>

namespace zento {

namespace {

class DeviceCapture final : public RecordingCapture {
public:
    DeviceCapture(
        const CaptureOrder& order, std::function<void(const std::optional<Error>&)> onStreamStopped)
        : m_desktop(openDesktop())
        , m_session(order.bundle, *m_desktop)
    {
        if (order.asking == CaptureOrder::Asking::Again) {
            m_desktop->forgetChoice(order.target);
        }
        m_session.target = order.target;
        m_session.excludeWindowIDs = order.excludeWindowIDs;
        m_session.onStreamStopped = std::move(onStreamStopped);
        m_session.recordNarration = order.recordNarration;
        m_session.microphoneID = order.microphoneID;
        m_session.recordWebcam = order.recordWebcam;
        m_session.cameraID = order.cameraID;
        m_session.recordSystemAudio = order.recordSystemAudio;
    }

    void choose(const std::stop_token& stop) override { m_session.choose(stop); }
    void start() override { m_session.start(); }
    void stop() override { m_session.stop(); }
    int frameCount() const override { return m_session.frameCount(); }
    int droppedFrameCount() const override { return m_session.droppedFrameCount(); }

private:
    std::unique_ptr<Desktop> m_desktop; // outlives the session
    CaptureSession m_session;
};

} // namespace

CaptureFactory deviceCaptures()
{
    return [](const CaptureOrder& order, auto onStreamStopped) {
        return std::make_unique<DeviceCapture>(order, std::move(onStreamStopped));
    };
}

} // namespace zento
