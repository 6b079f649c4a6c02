#pragma once

#include "Zento/Demo/PrivateDesktop.h"

#include <string>
#include <vector>

namespace zento::test {

/// The sound service of a private desktop: PipeWire with its session manager, and two outputs that
/// nobody hears, "speakers" and "headphones".
///
/// This process reaches it once it has the desktop's variables.
class PrivateSound {
public:
    static constexpr const char* kSpeakers = "speakers"; // the default output at first
    static constexpr const char* kHeadphones = "headphones";

    /// Returns when both outputs stand.
    explicit PrivateSound(PrivateDesktop& desktop);
    ~PrivateSound(); // ends the service
    PrivateSound(const PrivateSound&) = delete;
    PrivateSound& operator=(const PrivateSound&) = delete;

    /// A microphone "NAME" of one channel that hears what is played to the output "NAME-feed".
    /// Returns when it stands. End its process to unplug it.
    pid_t plugInMicrophone(const std::string& name);

    void setDefaultOutput(const std::string& name);

private:
    std::string program(const std::string& name) const;
    pid_t start(const std::vector<std::string>& command);
    void waitForNode(const std::string& name);

    PrivateDesktop& m_desktop;
    std::vector<pid_t> m_programs;
};

/// Whether the service lists a device of that name.
bool hasNode(const std::string& name);

} // namespace zento::test
