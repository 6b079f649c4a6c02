#pragma once

#include "Zento/Demo/PrivateDesktop.h"

#include <string>

namespace zento::test {

/// The sound service of a private desktop: PipeWire with its session manager, and two outputs that
/// nobody hears, "speakers" and "headphones".
///
/// This process reaches it once it has the desktop's variables.
class PrivateSound {
public:
    static constexpr const char* kSpeakers = "speakers"; // the default output at first
    static constexpr const char* kHeadphones = "headphones";

    /// Returns when both outputs stand. The service ends with the desktop.
    explicit PrivateSound(PrivateDesktop& desktop);

    /// A microphone "NAME" of one channel that hears what is played to the output "NAME-feed".
    /// Returns when it stands. End its process to unplug it.
    pid_t plugInMicrophone(const std::string& name);

    void setDefaultOutput(const std::string& name);

private:
    std::string program(const std::string& name) const;
    void waitForNode(const std::string& name);

    PrivateDesktop& m_desktop;
};

/// Whether the service lists a device of that name.
bool hasNode(const std::string& name);

} // namespace zento::test
