#pragma once

#include "ZentoCapture/Backends/PipeWireLoop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zento {

/// A device as the service lists it.
struct PipeWireNode {
    std::uint32_t id = 0;
    std::string serial; // its number, never used again
    std::string name;   // the same when it is plugged in again
    std::string mediaClass;
    std::string description; // for people; may be empty

    bool isMicrophone() const; // an output's monitor is none
    bool isCamera() const;
};

/// The devices there are and what they are linked to, kept up to date.
///
/// Threading: as the loop; `changed` runs on its thread.
class PipeWireNodes {
public:
    /// Complete after a `roundTrip`. Takes the lock itself.
    PipeWireNodes(PipeWireLoop& loop, std::function<void()> changed);
    ~PipeWireNodes();
    PipeWireNodes(const PipeWireNodes&) = delete;
    PipeWireNodes& operator=(const PipeWireNodes&) = delete;

    /// With the lock.
    std::span<const PipeWireNode> nodes() const;

    /// The numbers of the nodes whose output a node gets. With the lock.
    std::vector<std::uint32_t> sourcesOf(std::uint32_t node) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// `deviceID` if one of the nodes has it as its name or its serial number.
std::optional<std::string>
knownDevice(std::span<const PipeWireNode> nodes, const std::optional<std::string>& deviceID);

} // namespace zento
