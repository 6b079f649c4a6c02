#pragma once

#include <memory>
#include <string>
#include <vector>

namespace zento {

/// Something that can be recorded beside the screen.
struct CaptureDevice {
    std::string id;   // as `CaptureSession::microphoneID` and `cameraID` take it
    std::string name; // for people
    bool operator==(const CaptureDevice&) const = default;
};

struct CaptureDevices {
    std::vector<CaptureDevice> microphones;
    std::vector<CaptureDevice> cameras;
    bool operator==(const CaptureDevices&) const = default;
};

/// The microphones and cameras that PipeWire offers, asked again and again over one connection.
///
/// Threading: one thread at a time, which blocks for the service's answer, two seconds at most; the
/// connection has a thread of its own, named "capture.devices".
class DeviceWatch {
public:
    DeviceWatch();
    ~DeviceWatch();
    DeviceWatch(const DeviceWatch&) = delete;
    DeviceWatch& operator=(const DeviceWatch&) = delete;

    /// What there is now; nothing where no such service runs.
    CaptureDevices devices();

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection; // kept while it answers
};

} // namespace zento
