#include "ZentoCapture/Backends/X11Connection.h"

#include "ZentoCapture/Backends/XResources.h"

#include <algorithm>
#include <csignal>
#include <cstring>

namespace zento {

namespace {

constexpr std::uint32_t kWholeProperty = 1U << 20; // 32-bit units: 4 MB

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < number && screens.rem > 1; ++i) {
        xcb_screen_next(&screens);
    }
    return screens.rem > 0 ? screens.data : nullptr;
}

/// libxcb writes to its socket without asking for an error instead of the signal, whose default
/// ends the process: a recording would be lost with the server it was taken from. A handler that
/// somebody else has set stays.
void surviveADeadServer()
{
    struct sigaction current = {};
    if (sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        std::signal(SIGPIPE, SIG_IGN);
}

} // namespace

X11Connection::X11Connection(const std::string& displayName)
{
    surviveADeadServer();
    int screenNumber = 0;
    m_connection.reset(
        xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &screenNumber));
    if (!isBroken()) {
        m_screen = screenOf(get(), screenNumber);
    }
    if (m_screen == nullptr) {
        throw Error(ErrorCode::kNoDisplay, "no display available");
    }
}

std::optional<xcb_atom_t> X11Connection::existingAtom(std::string_view name) const
{
    const auto request =
        xcb_intern_atom(get(), 1, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(get(), request, nullptr));
    if (!reply || reply->atom == XCB_ATOM_NONE) {
        return {};
    }
    return reply->atom;
}

std::vector<std::uint8_t> X11Connection::property(xcb_window_t window, std::string_view name) const
{
    const auto atom = existingAtom(name);
    if (!atom) {
        return {};
    }
    const auto request =
        xcb_get_property(get(), 0, window, *atom, XCB_GET_PROPERTY_TYPE_ANY, 0, kWholeProperty);
    const XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(get(), request, nullptr));
    if (!reply) {
        return {};
    }
    const auto* bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
    return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

std::optional<std::uint32_t>
X11Connection::cardinal(xcb_window_t window, std::string_view name) const
{
    const auto bytes = property(window, name);
    std::uint32_t value = 0;
    if (bytes.size() < sizeof value) {
        return {};
    }
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

std::optional<X11Connection::Pointer> X11Connection::pointer() const
{
    const XcbPtr<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(get(), xcb_query_pointer(get(), root()), nullptr));
    if (!reply || reply->same_screen == 0) {
        return {};
    }
    return Pointer{
        .position = {static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)},
        .mask = reply->mask};
}

double displayScale(const X11Connection& connection)
{
    const auto bytes = connection.property(connection.root(), "RESOURCE_MANAGER");
    return scaleFromResources({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace zento
