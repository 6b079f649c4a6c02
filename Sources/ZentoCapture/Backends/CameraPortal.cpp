#include "ZentoCapture/Backends/CameraPortal.h"

#include "ZentoCore/Error.h"

#include <gio/gio.h>

#include <filesystem>
#include <string>
#include <system_error>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

constexpr const char* kCamera = "org.freedesktop.portal.Camera";

int openRemote(const PortalPatience& patience)
{
    SessionBus bus;
    Portal portal(bus, patience);
    portal.request(
        kCamera,
        "AccessCamera",
        [](PortalOptions&) {},
        [](GVariant* options) { return g_variant_new("(@a{sv})", options); },
        Portal::Asks::User);
    PortalOptions options;
    return bus.callForFile(
        Portal::interface(kCamera),
        "OpenPipeWireRemote",
        g_variant_new("(@a{sv})", options.end()),
        patience.service);
}

} // namespace

bool isSandboxed()
{
    std::error_code ignored;
    return std::filesystem::exists("/.flatpak-info", ignored);
}

int openCameraRemote(const PortalPatience& patience)
{
    try {
        return openRemote(patience);
    } catch (const Error& error) {
        throw Error(ErrorCode::kNoCamera, std::string("no camera: ") + error.what());
    }
}

} // namespace zento
