#include "ZentoCapture/GlobalShortcuts.h"

#include "ZentoCapture/Backends/Portal.h"
#include "ZentoCore/Error.h"

#include <gio/gio.h>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

constexpr const char* kShortcuts = "org.freedesktop.portal.GlobalShortcuts";

std::string createSession(Portal& portal, const std::stop_token& stop)
{
    const Variant results = portal.request(
        kShortcuts,
        "CreateSession",
        [](PortalOptions& options) { options.set("session_handle_token", Portal::newToken()); },
        [](GVariant* options) { return g_variant_new("(@a{sv})", options); },
        Portal::Asks::Nobody,
        stop);
    const std::string session = textEntry(results.get(), "session_handle").value_or("");
    if (session.empty() || g_variant_is_object_path(session.c_str()) == FALSE) {
        throw Error(
            ErrorCode::kPortalFailed, "the desktop's GlobalShortcuts portal gave no session");
    }
    return session;
}

GVariant* described(std::span<const GlobalShortcut> shortcuts)
{
    GVariantBuilder all;
    g_variant_builder_init(&all, G_VARIANT_TYPE("a(sa{sv})"));
    for (const GlobalShortcut& shortcut : shortcuts) {
        PortalOptions options;
        options.set("description", shortcut.description);
        if (!shortcut.trigger.empty()) {
            options.set("preferred_trigger", shortcut.trigger);
        }
        g_variant_builder_add(&all, "(s@a{sv})", shortcut.id.c_str(), options.end());
    }
    return g_variant_builder_end(&all);
}

} // namespace

void listenToShortcuts(
    std::span<const GlobalShortcut> shortcuts,
    const std::function<void(const std::string& id)>& pressed,
    const std::stop_token& stop)
{
    SessionBus bus;
    Portal portal(bus);
    if (portal.version(kShortcuts) == 0) {
        throw Error(ErrorCode::kPortalSilent, "this desktop has no GlobalShortcuts portal");
    }
    const std::string session = createSession(portal, stop);
    const BusSignal activated(
        bus, Portal::interface(kShortcuts), "Activated", [&](GVariant* signal) {
            const char* from = nullptr;
            const char* id = nullptr;
            g_variant_get(signal, "(&o&st@a{sv})", &from, &id, nullptr, nullptr);
            if (session == from) {
                pressed(id);
            }
        });
    portal.request(
        kShortcuts,
        "BindShortcuts",
        [](PortalOptions&) {},
        [&](GVariant* options) {
            return g_variant_new(
                "(o@a(sa{sv})s@a{sv})", session.c_str(), described(shortcuts), "", options);
        },
        Portal::Asks::User,
        stop);
    const std::stop_callback onStop(stop, [&] { bus.wake(); });
    while (!stop.stop_requested()) {
        bus.dispatch({});
    }
}

} // namespace zento
