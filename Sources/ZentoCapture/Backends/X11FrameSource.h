#pragma once

#include "ZentoCapture/Backends/WakeFd.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/Backends/X11Subject.h"
#include "ZentoCapture/FrameSource.h"

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace zento {

/// The pictures of a subject, whenever its server reports a change.
class X11FrameSource final : public FrameSource {
public:
    using SubjectFactory = std::function<std::unique_ptr<X11Subject>(const X11Connection&)>;

    /// Throws `Error` when the server's pixels are not ours, or what the factory throws.
    X11FrameSource(
        const std::string& displayName, int width, int height, const SubjectFactory& makeSubject);
    ~X11FrameSource() override;

    void start(FrameHandler onFrame, EndHandler onEnd) override;
    void stop() override;

private:
    void run();
    bool readEvents();
    bool deliver();
    void wait(double untilSeconds);

    X11Connection m_connection;
    X11Frames m_frames;
    std::unique_ptr<X11Subject> m_subject;
    bool m_owesPicture = true; // at the start, and after a refused frame
    FrameHandler m_onFrame;
    EndHandler m_onEnd;
    WakeFd m_wake;
    std::thread m_thread;
};

} // namespace zento
