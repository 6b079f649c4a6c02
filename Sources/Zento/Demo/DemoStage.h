#pragma once

#include "Zento/Demo/PrivateDesktop.h"

#include <stop_token>
#include <string>

namespace zento {

/// The stage of the demo: a private desktop with a soft background, an icon browser on the left and
/// a text editor on the right, both real programs, ready to be worked with.
///
/// In the order of use:
///
///     DemoStage stage(stop);            // on the main thread, before other threads start
///     stage.adoptEnvironment();         // the recorder's libraries look there for the desktop
///     const auto script = demoScript();
///     DemoActor actor(stage.display(), stage.accessibilityAddress());
///     awaitCurtain(script, actor, stop);
///     // … start recording stage.display() …
///     perform(script, actor, stop);
///     // … stop recording; the stage's end takes everything down …
///
/// Its programs die with the thread that made it, and all are gone when the destructor returns.
class DemoStage {
public:
    /// Returns when both windows stand in their places and the accessibility bus is up. Throws
    /// `Error`: kProgramMissing, kDesktopFailed, kDemoStopped, or of the domain "errno".
    explicit DemoStage(const std::stop_token& stop = {});

    /// As in DISPLAY: ":7".
    const std::string& display() const { return m_desktop.display(); }

    /// The D-Bus address of the desktop's accessibility bus.
    const std::string& accessibilityAddress() const { return m_accessibilityAddress; }

    /// What a process must have in its environment to record the desktop: DISPLAY,
    /// DBUS_SESSION_BUS_ADDRESS, AT_SPI_BUS_ADDRESS.
    Environment environment() const;

    /// Sets `environment()` for this process. libatspi and the D-Bus libraries read it once, when
    /// they are first used; setting variables is not safe beside threads that read them. So: call
    /// it on the main thread before any other is started.
    void adoptEnvironment() const;

    const PrivateDesktop& desktop() const { return m_desktop; }

private:
    void openWindows(const std::stop_token& stop);

    PrivateDesktop m_desktop;
    std::string m_accessibilityAddress;
};

} // namespace zento
