#include "Zento/Demo/DemoStage.h"

#include "Zento/Demo/DemoScript.h"
#include "Zento/Demo/DesktopWindows.h"
#include "Zento/Demo/Programs.h"
#include "Zento/Demo/RootBackground.h"
#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCore/Error.h"

#include <array>
#include <cstdlib>

namespace zento {

namespace {

constexpr double kOpenSeconds = 20; // measured: 0.7 s; a loaded machine needs several times that

constexpr Rect kBrowserFrame{70, 90, 1030, 900};
constexpr Rect kEditorFrame{1130, 90, 720, 900};

/// First line: the version of the format; then width, height, font, word wrap, line numbers,
/// automatic indent.
constexpr std::string_view kEditorSettings = "0.8.18\n720\n860\nJetBrains Mono 15\n1\n0\n0\n";

struct StageWindow {
    std::string title;
    Rect frame;
    pid_t program = 0;
};

void place(const PrivateDesktop& desktop, const StageWindow& window, const std::stop_token& stop)
{
    const XConnection connection(desktop.display());
    std::optional<std::uint32_t> handle;
    const auto isOpen = [&] {
        desktop.requireRunning();
        if (!ProcessGroup::isRunning(window.program)) {
            throw Error(
                ErrorCode::kDesktopFailed,
                "The program of the window “" + window.title + "” has ended by itself.");
        }
        handle = windowTitled(connection, window.title);
        return handle.has_value();
    };
    waitUntil(isOpen, kOpenSeconds, "The window “" + window.title + "” did not open", stop);
    // A new window may still be given a size of its own: ask until it stays.
    const auto standsInPlace = [&] {
        if (frameOf(connection, *handle) == window.frame) {
            return true;
        }
        requestFrame(connection, *handle, window.frame);
        connection.synchronise();
        return false;
    };
    waitUntil(
        standsInPlace,
        kOpenSeconds,
        "The window “" + window.title + "” did not go to its place",
        stop);
}

} // namespace

DemoStage::DemoStage(const std::stop_token& stop)
    : m_desktop(DesktopSize{}, stop)
{
    paintRootBackground(XConnection(display()), VerticalGradient{});
    openWindows(stop);
    m_accessibilityAddress = m_desktop.awaitAccessibilityBus(stop);
}

void DemoStage::openWindows(const std::stop_token& stop)
{
    const std::string& path = m_desktop.environment().at("PATH");
    const auto browser = requireProgram("gtk3-icon-browser", "gtk-3-examples", path);
    const auto editor = requireProgram("l3afpad", "l3afpad", path);
    const auto notes = m_desktop.home().writeFile(kNotesFile, notesText());
    m_desktop.home().writeFile(".config/l3afpad/l3afpadrc", kEditorSettings);
    const std::array windows{
        StageWindow{kNotesFile, kEditorFrame, m_desktop.start({editor, notes})},
        StageWindow{"Icon Browser", kBrowserFrame, m_desktop.start({browser})}};
    for (const StageWindow& window : windows) {
        place(m_desktop, window, stop);
    }
}

Environment DemoStage::environment() const
{
    return {
        {"DISPLAY", display()},
        {"DBUS_SESSION_BUS_ADDRESS", m_desktop.environment().at("DBUS_SESSION_BUS_ADDRESS")},
        {"AT_SPI_BUS_ADDRESS", m_accessibilityAddress}};
}

void DemoStage::adoptEnvironment() const
{
    for (const auto& [name, value] : environment()) {
        setenv(name.c_str(), value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): see the header
    }
}

} // namespace zento
