#pragma once

#include "ZentoCapture/SideRecorder.h"

namespace zento {

/// Records a camera into an H.264 movie of 1280 × 720 pixels (see `WebcamWriter`).
///
/// A camera's own stamps need not lie on our clock: the movie's start is told by when its pictures
/// arrive (see `CameraClock`). A picture that comes while another is being encoded takes the place
/// of the ones that wait.
class CameraRecorder final : public SideRecorder {
public:
    CameraRecorder();
    ~CameraRecorder() override;

    /// Throws `Error`: 31 "no camera" when there is none or no service that has one; 32 or 33
    /// when the service refuses; 34 or the system's error when the movie cannot be written. A
    /// camera that offers nothing we read is told of on standard error later on.
    void
    start(const std::filesystem::path& file, const std::optional<std::string>& deviceID) override;
    std::optional<double> stop() noexcept override;
    std::optional<double> startTime() const override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
