#pragma once

#include "ZentoCapture/Backends/PipeWireLoop.h"
#include "ZentoMedia/CameraPicture.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zento {

struct CameraFrame {
    CameraPicture picture;       // valid during the call it is handed to
    std::optional<double> stamp; // seconds of the camera's clock
    double arrival = 0;          // seconds of CLOCK_MONOTONIC
};

/// Pictures as they come from a camera of PipeWire: 1280 × 720 at 24 to 60 a second where the
/// camera offers that, uncompressed or as JPEGs; else whatever it offers. Of pictures that wait
/// only the newest is handed on.
///
/// Threading: the handlers run on the loop's thread, and no more once the destructor has returned.
class PipeWireCameraStream {
public:
    using Handler = std::function<void(const CameraFrame&)>;
    using FailureHandler = std::function<void(const std::string& reason)>;

    /// `target`: a camera's name or serial number; absent: the default one. `onFailure`: no
    /// picture will come, as the camera offers nothing we read. Throws `Error` when
    /// the service refuses: with the code 32 the camera, with 33 its pictures.
    PipeWireCameraStream(
        PipeWireLoop& loop,
        const std::optional<std::string>& target,
        Handler onFrame,
        FailureHandler onFailure);
    ~PipeWireCameraStream();
    PipeWireCameraStream(const PipeWireCameraStream&) = delete;
    PipeWireCameraStream& operator=(const PipeWireCameraStream&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
