#pragma once

#include "ZentoCapture/SideRecorder.h"

namespace zento {

/// The way to the cameras: the session's own service, or the desktop's portal.
enum class CameraAccess : unsigned char { Direct, Portal };

/// Through the portal in a sandbox, which shows no other.
CameraAccess cameraAccess();

/// Records a camera into an H.264 movie of 1280 × 720 pixels (see `WebcamWriter`).
///
/// A camera's own stamps need not lie on our clock: the movie's start is told by when its pictures
/// arrive (see `CameraClock`). A picture that comes while another is being encoded takes the place
/// of the ones that wait.
class CameraRecorder final : public SideRecorder {
public:
    explicit CameraRecorder(CameraAccess access = cameraAccess());
    ~CameraRecorder() override;

    /// Blocks, through the portal, until the user has answered whether the camera may be used.
    ///
    /// Throws `Error`: 31 "no camera" when there is none, none may be used or no service has one;
    /// 32 or 33 when the service refuses; 34 or the system's error when the movie cannot be
    /// written. A camera that offers nothing we read is told of on standard error later on.
    void
    start(const std::filesystem::path& file, const std::optional<std::string>& deviceID) override;
    std::optional<double> stop() noexcept override;
    std::optional<double> startTime() const override;

private:
    struct State;
    CameraAccess m_access;
    std::unique_ptr<State> m_state;
};

} // namespace zento
