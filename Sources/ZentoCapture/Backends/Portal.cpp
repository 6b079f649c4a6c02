#include "ZentoCapture/Backends/Portal.h"

#include "ZentoCore/Error.h"

#include <gio/gio.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kRequest = "org.freedesktop.portal.Request";

struct Response {
    bool hasCome = false;
    unsigned code = 0;
    Variant results;
};

/// Shows the portal that nobody waits any more, so that its dialog goes.
void close(const SessionBus& bus, const std::string& request)
{
    bus.send({kService, request.c_str(), kRequest}, "Close");
}

std::string spoken(const char* name, const char* method)
{
    const std::string full = name;
    return "the desktop's " + full.substr(full.rfind('.') + 1) + " portal (" + method + ")";
}

} // namespace

Portal::Portal(SessionBus& bus, PortalPatience patience)
    : m_bus(bus)
    , m_patience(patience)
{
}

BusInterface Portal::interface(const char* name)
{
    return {kService, kPath, name};
}

unsigned Portal::version(const char* name) const
{
    return number(name, "version");
}

unsigned Portal::number(const char* name, const char* property) const
{
    const Variant value = m_bus.property(interface(name), property, m_patience.service);
    return value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32)
               ? g_variant_get_uint32(value.get())
               : 0;
}

std::string Portal::newToken()
{
    // Other connections of this process count, too: a session's path goes by its token alone.
    static std::atomic<unsigned> count = 0;
    return "zento" + std::to_string(::getpid()) + "_" + std::to_string(++count);
}

/// Of the path of a request: ":1.42" as "1_42".
std::string Portal::senderPart() const
{
    std::string name = g_dbus_connection_get_unique_name(m_bus.connection());
    name.erase(0, 1);
    std::ranges::replace(name, '.', '_');
    return name;
}

Variant Portal::request(
    const char* name,
    const char* method,
    const std::function<void(PortalOptions&)>& options,
    const Arguments& arguments,
    Asks asks,
    const std::stop_token& stop)
{
    const std::string token = newToken();
    const std::string path = std::string(kPath) + "/request/" + senderPart() + "/" + token;
    Response response;
    // The answer may come before the call returns, so it is listened for from here on.
    const BusSignal heard(
        m_bus, {kService, path.c_str(), kRequest}, "Response", [&](GVariant* signal) {
            GVariant* results = nullptr;
            g_variant_get(signal, "(u@a{sv})", &response.code, &results);
            response.results.reset(results);
            response.hasCome = true;
        });
    PortalOptions all;
    all.set("handle_token", token);
    options(all);
    m_bus.call(interface(name), method, arguments(all.end()), m_patience.service, stop);

    const auto patience = asks == Asks::User ? m_patience.person : m_patience.service;
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const std::stop_callback onStop(stop, [&] { m_bus.wake(); });
    while (!response.hasCome) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (stop.stop_requested() || left.count() <= 0) {
            close(m_bus, path);
            throw stop.stop_requested()
                ? Error(ErrorCode::kCancelled, "given up")
                : Error(ErrorCode::kPortalSilent, spoken(name, method) + " does not answer");
        }
        m_bus.dispatch(left);
    }
    if (response.code == 1) {
        throw Error(ErrorCode::kPortalDenied, "the desktop's dialog was answered with no");
    }
    if (response.code != 0) {
        throw Error(
            ErrorCode::kPortalFailed, spoken(name, method) + " could not do what it was asked");
    }
    return std::move(response.results);
}

struct PortalOptions::State {
    GVariantBuilder builder{};
};

PortalOptions::PortalOptions()
    : m_state(std::make_unique<State>())
{
    g_variant_builder_init(&m_state->builder, G_VARIANT_TYPE_VARDICT);
}

PortalOptions::~PortalOptions()
{
    g_variant_builder_clear(&m_state->builder);
}

void PortalOptions::set(const char* name, const std::string& value)
{
    g_variant_builder_add(&m_state->builder, "{sv}", name, g_variant_new_string(value.c_str()));
}

void PortalOptions::set(const char* name, unsigned value)
{
    g_variant_builder_add(&m_state->builder, "{sv}", name, g_variant_new_uint32(value));
}

void PortalOptions::set(const char* name, bool value)
{
    g_variant_builder_add(
        &m_state->builder, "{sv}", name, g_variant_new_boolean(value ? TRUE : FALSE));
}

_GVariant* PortalOptions::end()
{
    return g_variant_builder_end(&m_state->builder);
}

Variant entry(_GVariant* dictionary, const char* name, const char* type)
{
    return Variant(g_variant_lookup_value(dictionary, name, G_VARIANT_TYPE(type)));
}

unsigned numberEntry(_GVariant* dictionary, const char* name)
{
    const Variant value = entry(dictionary, name, "u");
    return value ? g_variant_get_uint32(value.get()) : 0;
}

std::optional<std::string> textEntry(_GVariant* dictionary, const char* name)
{
    const Variant value = entry(dictionary, name, "s");
    return value ? std::optional<std::string>(g_variant_get_string(value.get(), nullptr))
                 : std::nullopt;
}

} // namespace zento
