#pragma once

#include "Zento/Demo/PrivateFolder.h"
#include "Zento/Demo/ProcessGroup.h"

#include <stop_token>
#include <string>
#include <vector>

namespace zento {

struct DesktopSize {
    int width = 1920; // pixels
    int height = 1080;
};

/// A desktop of its own: an X server without a screen (Xvfb, on a display number that is free), a
/// window manager (openbox) and a session bus, with a home folder that nobody else uses. An
/// accessibility bus comes up with the first program that asks for one.
///
/// Everything ends with the object, and nothing of it outlives this process (see `ProcessGroup`).
/// Only a SIGKILL of this process leaves the private folder behind.
///
/// Threading: as `ProcessGroup`. It starts no thread and changes no variable of this process.
class PrivateDesktop {
public:
    /// Returns when the desktop is ready for programs. Throws `Error`: kProgramMissing,
    /// kDesktopFailed, kDemoStopped, or of the domain "errno".
    explicit PrivateDesktop(DesktopSize size = {}, const std::stop_token& stop = {});

    /// As in DISPLAY: ":7".
    const std::string& display() const { return m_display; }

    /// All the variables that a program on the desktop has; nothing of this process but PATH.
    const Environment& environment() const { return m_environment; }

    /// The home folder.
    const PrivateFolder& home() const { return m_home; }

    /// Where its programs' messages are collected.
    std::filesystem::path log() const { return m_home.path() / "log.txt"; }

    /// Runs a program on the desktop: its path, then its arguments.
    pid_t start(const std::vector<std::string>& command);

    /// The address of its accessibility bus, once that is up. Throws `Error` kDesktopFailed where
    /// it does not come up, kDemoStopped.
    std::string awaitAccessibilityBus(const std::stop_token& stop) const;

    /// Throws kDesktopFailed if the X server, the window manager or the bus has ended.
    void requireRunning() const;

private:
    struct Member {
        std::string name;
        pid_t program = 0;
    };

    std::string startReporting(
        const std::string& name,
        const std::vector<std::string>& command,
        const std::stop_token& stop);
    void startServer(DesktopSize size, const std::stop_token& stop);
    void startSessionBus(const std::stop_token& stop);
    void startWindowManager(const std::stop_token& stop);

    PrivateFolder m_home; // outlives the programs that write into it
    ProcessGroup m_programs;
    std::vector<Member> m_members;
    Environment m_environment;
    std::string m_display;
};

} // namespace zento
