#include "ClientWindow.h"

#include <array>
#include <cstdlib>
#include <string_view>

namespace zento {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name)
{
    xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr);
    const xcb_atom_t result = reply->atom;
    std::free(reply);
    return result;
}

xcb_window_t
makeWindow(xcb_connection_t* connection, xcb_window_t parent, int x, int y, int width, int height)
{
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(
        connection,
        XCB_COPY_FROM_PARENT,
        window,
        parent,
        static_cast<std::int16_t>(x),
        static_cast<std::int16_t>(y),
        static_cast<std::uint16_t>(width),
        static_cast<std::uint16_t>(height),
        0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT,
        0,
        nullptr);
    return window;
}

bool isViewable(xcb_connection_t* connection, xcb_window_t window)
{
    xcb_get_window_attributes_reply_t* const reply = xcb_get_window_attributes_reply(
        connection, xcb_get_window_attributes(connection, window), nullptr);
    const bool result = reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    std::free(reply);
    return result;
}

} // namespace

ClientWindow::ClientWindow(
    const std::string& display, int x, int y, int width, int height, std::uint32_t rgb)
    : m_connection(connectTo(display))
{
    xcb_connection_t* const connection = m_connection.get();
    m_window = makeWindow(connection, rootOf(connection), x, y, width, height);
    // The place was chosen by the user (WM_NORMAL_HINTS, flags USPosition and USSize), so the
    // window manager leaves it.
    std::array<std::uint32_t, 18> hints{};
    hints[0] = 1U | 2U;
    xcb_change_property(
        connection,
        XCB_PROP_MODE_REPLACE,
        m_window,
        XCB_ATOM_WM_NORMAL_HINTS,
        XCB_ATOM_WM_SIZE_HINTS,
        32,
        hints.size(),
        hints.data());
    constexpr std::string_view kClass("client\0Client\0", 14);
    xcb_change_property(
        connection,
        XCB_PROP_MODE_REPLACE,
        m_window,
        XCB_ATOM_WM_CLASS,
        XCB_ATOM_STRING,
        8,
        kClass.size(),
        kClass.data());
    m_mark = makeWindow(connection, m_window, 0, 0, kMark, kMark);
    paint(m_window, rgb);
    paint(m_mark, 0xFFFFFF);
    xcb_map_window(connection, m_mark);
    restore();
    xcb_query_tree_reply_t* const tree =
        xcb_query_tree_reply(connection, xcb_query_tree(connection, m_window), nullptr);
    m_frame = tree->parent;
    std::free(tree);
}

ClientWindow::~ClientWindow()
{
    close();
}

void ClientWindow::moveTo(int x, int y)
{
    const std::array<std::int32_t, 2> place{x, y};
    xcb_configure_window(
        m_connection.get(), m_window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place.data());
    roundTrip(m_connection.get());
}

void ClientWindow::resize(int width, int height)
{
    const std::array<std::int32_t, 2> size{width, height};
    xcb_configure_window(
        m_connection.get(),
        m_window,
        XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        size.data());
    roundTrip(m_connection.get());
}

void ClientWindow::minimise()
{
    constexpr std::uint32_t kIconicState = 3;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = m_window;
    event.type = atom(m_connection.get(), "WM_CHANGE_STATE");
    event.data.data32[0] = kIconicState;
    xcb_send_event(
        m_connection.get(),
        0,
        rootOf(m_connection.get()),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&event));
    roundTrip(m_connection.get());
}

void ClientWindow::restore()
{
    xcb_map_window(m_connection.get(), m_window);
    EXPECT_TRUE(eventually([this] { return isViewable(m_connection.get(), m_window); }));
}

void ClientWindow::setColour(std::uint32_t rgb)
{
    paint(m_window, rgb);
}

void ClientWindow::setMarkColour(std::uint32_t rgb)
{
    paint(m_mark, rgb);
}

void ClientWindow::close()
{
    xcb_destroy_window(m_connection.get(), m_window);
    EXPECT_TRUE(eventually([this] { return !isViewable(m_connection.get(), m_frame); }));
}

Vec2 ClientWindow::origin() const
{
    xcb_translate_coordinates_reply_t* const reply = xcb_translate_coordinates_reply(
        m_connection.get(),
        xcb_translate_coordinates(m_connection.get(), m_window, rootOf(m_connection.get()), 0, 0),
        nullptr);
    const Vec2 origin{static_cast<double>(reply->dst_x), static_cast<double>(reply->dst_y)};
    std::free(reply);
    return origin;
}

void ClientWindow::paint(xcb_window_t window, std::uint32_t rgb)
{
    xcb_change_window_attributes(m_connection.get(), window, XCB_CW_BACK_PIXEL, &rgb);
    xcb_clear_area(m_connection.get(), 0, window, 0, 0, 0, 0);
    roundTrip(m_connection.get());
}

} // namespace zento
