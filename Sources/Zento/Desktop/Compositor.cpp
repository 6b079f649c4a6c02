#include "Zento/Desktop/Compositor.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace zento {

namespace {

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

struct Free {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: the library's way
};

} // namespace

bool blendsWindows()
{
    int screen = 0;
    const std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, &screen));
    if (xcb_connection_has_error(connection.get()) != 0) {
        return true;
    }
    const std::string name = "_NET_WM_CM_S" + std::to_string(screen);
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(
        connection.get(),
        xcb_intern_atom(connection.get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    if (!atom) {
        return true;
    }
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(
            connection.get(), xcb_get_selection_owner(connection.get(), atom->atom), nullptr));
    return !owner || owner->owner != XCB_WINDOW_NONE;
}

} // namespace zento
