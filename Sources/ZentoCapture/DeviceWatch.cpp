#include "ZentoCapture/DeviceWatch.h"

#include "ZentoCapture/Backends/PipeWireLoop.h"
#include "ZentoCapture/Backends/PipeWireNodes.h"
#include "ZentoCore/Error.h"

#include <optional>

namespace zento {

struct DeviceWatch::Connection {
    PipeWireLoop loop{"capture.devices"};
    PipeWireNodes nodes{loop, [] {}};

    std::optional<CaptureDevices> devices()
    {
        const PipeWireLoop::Lock lock(loop);
        if (!loop.roundTrip()) {
            return std::nullopt;
        }
        CaptureDevices found;
        for (const PipeWireNode& node : nodes.nodes()) {
            const CaptureDevice device{
                .id = node.name, .name = node.description.empty() ? node.name : node.description};
            if (node.isMicrophone()) {
                found.microphones.push_back(device);
            } else if (node.isCamera()) {
                found.cameras.push_back(device);
            }
        }
        return found;
    }
};

DeviceWatch::DeviceWatch() = default;
DeviceWatch::~DeviceWatch() = default;

CaptureDevices DeviceWatch::devices()
try {
    if (!m_connection) {
        m_connection = std::make_unique<Connection>();
    }
    if (auto found = m_connection->devices()) {
        return *std::move(found);
    }
    m_connection.reset(); // there may be a service next time
    return {};
} catch (const Error&) {
    return {};
}

} // namespace zento
