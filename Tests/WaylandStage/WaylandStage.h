#pragma once

#include "Zento/Demo/PrivateFolder.h"
#include "Zento/Demo/ProcessGroup.h"
#include "ZentoCapture/Backends/SessionBus.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zento::test {

/// A Wayland desktop that nobody sees: a compositor with one monitor of 1920 × 1080 pixels, the
/// session bus, PipeWire, the desktop portal, and somebody who answers its dialogs.
///
/// It needs the variables of this process, which stay its own for the rest of the process's life.
///
/// Threading: one thread.
class WaylandStage {
public:
    static constexpr int kWidth = 1920; // pixels
    static constexpr int kHeight = 1080;

    WaylandStage();
    ~WaylandStage();
    WaylandStage(const WaylandStage&) = delete;
    WaylandStage& operator=(const WaylandStage&) = delete;

    const std::filesystem::path& home() const { return m_home.path(); }

    /// Pixels per point of the monitor, from here on; the portal tells it of streams made later.
    void setScale(double scale);

    /// A program on the desktop. What it prints goes to `home() / name`.
    pid_t start(const std::string& name, const std::vector<std::string>& command);

    /// The test's own program, in front of everything and in place of the one before, once it is on
    /// the screen. It tells what it sees of the user, a line each. `sizes`: "800x600", of a window
    /// that is not over the whole screen; the key R gives it the next one.
    pid_t startClient(std::vector<std::string> sizes = {});
    /// The same with a `Page` over the whole screen, which is not as tall.
    pid_t startPage();

    /// The same with a program of GTK 3, which has a button. `state`: "window" or "fullscreen".
    pid_t startGtkClient(const std::string& state);
    void endClient(); // whichever was started last
    std::vector<std::string> clientLines() const;

    // What the portal's user does. `answer`: "yes", "no" or "never".
    void answer(const std::string& answer);
    void setCursorModes(unsigned modes); // starts the portal anew: it asks its backend once
    void lendDevices(unsigned types);    // of those that are asked for: keyboard 1, pointer 2
    unsigned dialogs();                  // that have been shown so far
    void revoke();                       // every leave that was given
    void press(const std::string& shortcut);
    std::vector<std::string> shortcuts(); // that are bound: "id: description"
    void setShot(const std::filesystem::path& picture);

    void forgetCamera(); // what was answered when the camera was asked for

    void killCompositor();

    SessionBus& bus() { return *m_bus; }

private:
    pid_t startInFront(const std::vector<std::string>& command);
    void startBus();
    void startServices();
    void startPortal();
    bool owns(const char* name);
    Variant tell(const char* method, _GVariant* arguments = nullptr);

    PrivateFolder m_home;
    ProcessGroup m_programs;
    Environment m_environment;
    pid_t m_compositor = 0;
    pid_t m_portal = 0;
    pid_t m_client = 0;
    std::unique_ptr<SessionBus> m_bus;
};

} // namespace zento::test
