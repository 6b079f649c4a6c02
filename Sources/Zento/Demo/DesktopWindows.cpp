#include "Zento/Demo/DesktopWindows.h"

#include "Zento/Demo/XConnection.h"

#include <xcb/xcb.h>

#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace zento {

namespace {

struct Extents {
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;
};

/// The bytes of a property; empty if the window has no such property.
std::vector<std::byte>
propertyBytes(const XConnection& connection, std::uint32_t window, const std::string& name)
{
    constexpr std::uint32_t kLongest = 4096; // in four-byte units
    const auto cookie = xcb_get_property(
        connection.get(), 0, window, connection.atom(name), XCB_ATOM_ANY, 0, kLongest);
    const auto reply = own(xcb_get_property_reply(connection.get(), cookie, nullptr));
    if (!reply) {
        return {};
    }
    const auto* bytes = static_cast<const std::byte*>(xcb_get_property_value(reply.get()));
    return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

std::vector<std::uint32_t>
numbers(const XConnection& connection, std::uint32_t window, const std::string& name)
{
    const std::vector<std::byte> bytes = propertyBytes(connection, window, name);
    std::vector<std::uint32_t> result(bytes.size() / sizeof(std::uint32_t));
    if (!result.empty()) {
        std::memcpy(result.data(), bytes.data(), result.size() * sizeof(std::uint32_t));
    }
    return result;
}

Extents extents(const XConnection& connection, std::uint32_t window, const std::string& name)
{
    const std::vector<std::uint32_t> values = numbers(connection, window, name);
    if (values.size() < 4) {
        return {};
    }
    return {
        static_cast<double>(values[0]),
        static_cast<double>(values[1]),
        static_cast<double>(values[2]),
        static_cast<double>(values[3])};
}

Extents borders(const XConnection& connection, std::uint32_t window)
{
    const Extents frame = extents(connection, window, "_NET_FRAME_EXTENTS");
    const Extents shadow = extents(connection, window, "_GTK_FRAME_EXTENTS");
    return {
        frame.left - shadow.left,
        frame.right - shadow.right,
        frame.top - shadow.top,
        frame.bottom - shadow.bottom};
}

void askWindowManager(
    const XConnection& connection,
    std::uint32_t window,
    const std::string& message,
    const std::array<std::uint32_t, 5>& data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection.atom(message);
    std::memcpy(event.data.data32, data.data(), sizeof data);
    xcb_send_event(
        connection.get(),
        0,
        connection.root().id,
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&event));
}

std::uint32_t whole(double value)
{
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value)));
}

} // namespace

WindowManagerProbe::WindowManagerProbe(const XConnection& connection)
    : m_connection(connection)
    , m_window(xcb_generate_id(connection.get()))
{
    xcb_create_window(
        connection.get(),
        XCB_COPY_FROM_PARENT,
        m_window,
        connection.root().id,
        0,
        0,
        1,
        1,
        0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT,
        0,
        nullptr);
}

WindowManagerProbe::~WindowManagerProbe()
{
    xcb_destroy_window(m_connection.get(), m_window);
    m_connection.flush();
}

bool WindowManagerProbe::isAnswered() const
{
    askWindowManager(m_connection, m_window, "_NET_REQUEST_FRAME_EXTENTS", {});
    return !numbers(m_connection, m_window, "_NET_FRAME_EXTENTS").empty();
}

std::string rootText(const XConnection& connection, const std::string& property)
{
    const std::vector<std::byte> bytes = propertyBytes(connection, connection.root().id, property);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::optional<std::uint32_t> windowTitled(const XConnection& connection, const std::string& title)
{
    for (const std::uint32_t window :
         numbers(connection, connection.root().id, "_NET_CLIENT_LIST")) {
        const std::vector<std::byte> name = propertyBytes(connection, window, "_NET_WM_NAME");
        const std::string_view text(reinterpret_cast<const char*>(name.data()), name.size());
        if (text.contains(title)) {
            return window;
        }
    }
    return std::nullopt;
}

void requestFrame(const XConnection& connection, std::uint32_t window, const Rect& frame)
{
    // Static gravity: the message then speaks of the client's own area. Source: a pager.
    constexpr std::uint32_t kFlags = 10U | 0xfU << 8U | 2U << 12U;
    constexpr std::uint32_t kFromPager = 2;
    const Extents border = borders(connection, window);
    askWindowManager(
        connection,
        window,
        "_NET_MOVERESIZE_WINDOW",
        {kFlags,
         whole(frame.x + border.left),
         whole(frame.y + border.top),
         whole(frame.w - border.left - border.right),
         whole(frame.h - border.top - border.bottom)});
    askWindowManager(
        connection, window, "_NET_ACTIVE_WINDOW", {kFromPager, XCB_CURRENT_TIME, 0, 0, 0});
    connection.flush();
}

std::optional<Rect> frameOf(const XConnection& connection, std::uint32_t window)
{
    xcb_connection_t* x = connection.get();
    const auto size = own(xcb_get_geometry_reply(x, xcb_get_geometry(x, window), nullptr));
    const auto place = own(xcb_translate_coordinates_reply(
        x, xcb_translate_coordinates(x, window, connection.root().id, 0, 0), nullptr));
    if (!size || !place) {
        return std::nullopt;
    }
    const Extents border = borders(connection, window);
    return Rect{
        place->dst_x - border.left,
        place->dst_y - border.top,
        size->width + border.left + border.right,
        size->height + border.top + border.bottom};
}

} // namespace zento
