#include "ZentoCapture/DesktopServices.h"

#include "ZentoCapture/Backends/PipeWireLoop.h"
#include "ZentoCapture/Backends/Portal.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/DeviceWatch.h"
#include "ZentoCore/Error.h"

#include <gio/gio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

constexpr const char* kScreenCast = "org.freedesktop.portal.ScreenCast";
constexpr unsigned kMonitor = 1;
constexpr unsigned kWindow = 2;
constexpr unsigned kMetadata = 4;

std::string variable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody sets it
    return value == nullptr ? "" : value;
}

std::vector<std::string> names(const std::vector<CaptureDevice>& devices)
{
    std::vector<std::string> result;
    result.reserve(devices.size());
    for (const CaptureDevice& device : devices) {
        result.push_back(device.name);
    }
    return result;
}

bool isAccessibilityOn(SessionBus& bus)
{
    const Variant value = bus.property(
        {"org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status"}, "IsEnabled", std::chrono::seconds(2));
    return value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN)
           && g_variant_get_boolean(value.get()) != FALSE;
}

void askBus(DesktopServices& services)
try {
    SessionBus bus;
    services.hasSessionBus = true;
    services.hasAccessibility = isAccessibilityOn(bus);
    const Portal portal(bus);
    services.portals = {
        .screenCast = portal.version(kScreenCast),
        .screenshot = portal.version("org.freedesktop.portal.Screenshot"),
        .globalShortcuts = portal.version("org.freedesktop.portal.GlobalShortcuts"),
        .remoteDesktop = portal.version("org.freedesktop.portal.RemoteDesktop")};
    const unsigned sources = portal.number(kScreenCast, "AvailableSourceTypes");
    services.offer = {
        .monitors = (sources & kMonitor) != 0,
        .windows = (sources & kWindow) != 0,
        .pointerAsMetadata = (portal.number(kScreenCast, "AvailableCursorModes") & kMetadata) != 0};
} catch (const Error&) {
    services.hasSessionBus = false;
}

bool hasX11Display()
try {
    const X11Connection connection("");
    return true;
} catch (const Error&) {
    return false;
}

bool hasWaylandSocket(const std::string& display)
{
    const std::filesystem::path name = display.empty() ? "wayland-0" : display;
    const auto socket = name.is_absolute() ? name : variable("XDG_RUNTIME_DIR") / name;
    std::error_code ignored;
    return std::filesystem::is_socket(socket, ignored);
}

bool hasPipeWire()
try {
    const PipeWireLoop loop("doctor");
    return true;
} catch (const Error&) {
    return false;
}

} // namespace

SessionFacts environmentFacts()
{
    return {
        .sessionType = variable("XDG_SESSION_TYPE"),
        .waylandDisplay = variable("WAYLAND_DISPLAY"),
        .x11Display = variable("DISPLAY")};
}

InputAccess deviceInputAccess()
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/input", ignored)) {
        if (entry.path().filename().string().starts_with("event")
            && ::access(entry.path().c_str(), R_OK) == 0) {
            return InputAccess::Devices;
        }
    }
    return InputAccess::None;
}

SessionFacts sessionFacts()
{
    SessionFacts facts = environmentFacts();
    if (facts.isWaylandSession()) {
        try {
            SessionBus bus;
            facts.screenCast = Portal(bus).version(kScreenCast);
        } catch (const Error&) {
            facts.screenCast = 0;
        }
    }
    return facts;
}

DesktopServices desktopServices()
{
    DesktopServices services;
    services.facts = environmentFacts();
    askBus(services);
    services.facts.screenCast = services.portals.screenCast;
    const bool isWayland = services.facts.isWaylandSession();
    services.hasDisplay =
        isWayland ? hasWaylandSocket(services.facts.waylandDisplay) : hasX11Display();
    services.input = isWayland             ? deviceInputAccess()
                     : services.hasDisplay ? InputAccess::Server
                                           : InputAccess::None;
    services.hasPipeWire = hasPipeWire();
    const CaptureDevices devices = DeviceWatch().devices();
    services.microphones = names(devices.microphones);
    services.cameras = names(devices.cameras);
    return services;
}

} // namespace zento
