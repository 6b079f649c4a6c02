#include "Zento/Demo/XConnection.h"

#include "ZentoCore/Error.h"

#include <xcb/xcb.h>

namespace zento {

XConnection::XConnection(const std::string& display)
    : m_connection(xcb_connect(display.c_str(), nullptr))
{
    if (xcb_connection_has_error(get()) != 0) {
        throw Error(ErrorCode::kDesktopFailed, "The display " + display + " cannot be reached.");
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(get())).data;
    m_root = {screen->root, screen->width_in_pixels, screen->height_in_pixels, screen->root_depth};
}

void XConnection::Disconnect::operator()(xcb_connection_t* connection) const
{
    xcb_disconnect(connection);
}

std::uint32_t XConnection::atom(const std::string& name) const
{
    const auto cookie =
        xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const auto reply = own(xcb_intern_atom_reply(get(), cookie, nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

void XConnection::flush() const
{
    xcb_flush(get());
}

bool XConnection::synchronise() const
{
    const auto reply = own(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
    return reply != nullptr;
}

} // namespace zento
