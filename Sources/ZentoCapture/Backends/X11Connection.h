#pragma once

#include "ZentoCore/Error.h"
#include "ZentoCore/Geometry.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace zento {

struct FreeDeleter {
    void operator()(void* memory) const noexcept { std::free(memory); } // NOLINT: libxcb's contract
};

/// A reply, an event or an error of libxcb.
template <typename T>
using XcbPtr = std::unique_ptr<T, FreeDeleter>;

/// One connection to an X server and the screen it was opened for. A server that goes away breaks
/// the connection and nothing else: the process ignores SIGPIPE from the first connection on.
///
/// Threading: as libxcb, safe; but events go to whoever asks first, so a connection whose events
/// matter has one thread that reads them.
class X11Connection {
public:
    /// `displayName` as in the environment's `DISPLAY`; empty takes the environment's.
    /// Throws `Error` with the code 20.
    explicit X11Connection(const std::string& displayName);

    xcb_connection_t* get() const { return m_connection.get(); }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    int fileDescriptor() const { return xcb_get_file_descriptor(get()); }
    bool isBroken() const { return xcb_connection_has_error(get()) != 0; }

    XcbPtr<xcb_generic_event_t> nextEvent() const
    {
        return XcbPtr<xcb_generic_event_t>(xcb_poll_for_event(get()));
    }

    /// Whether a checked request went through.
    bool succeeded(xcb_void_cookie_t request) const
    {
        const XcbPtr<xcb_generic_error_t> error(xcb_request_check(get(), request));
        return !error && !isBroken();
    }

    std::optional<xcb_atom_t> existingAtom(std::string_view name) const;

    /// A window's property as bytes; empty if it has none.
    std::vector<std::uint8_t> property(xcb_window_t window, std::string_view name) const;

    /// The first 32-bit value of a window's property.
    std::optional<std::uint32_t> cardinal(xcb_window_t window, std::string_view name) const;

    struct Pointer {
        Vec2 position;          // pixels of the root window
        std::uint16_t mask = 0; // modifiers and buttons, core protocol bits
    };
    std::optional<Pointer> pointer() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    const xcb_screen_t* m_screen = nullptr;
};

/// The reply to a request; null when the server refused it. Windows come and go while we ask about
/// them, so a refusal is nothing unusual.
template <typename Fetch, typename Cookie>
auto replyOf(const X11Connection& connection, Fetch fetch, Cookie cookie)
{
    xcb_generic_error_t* error = nullptr;
    auto* const reply = fetch(connection.get(), cookie, &error);
    const XcbPtr<xcb_generic_error_t> ownedError(error);
    return XcbPtr<std::remove_pointer_t<decltype(reply)>>(reply);
}

/// Pixels per point: what the user set as the fonts' resolution over its default of 96, if that is
/// a whole number; else 1. X11 counts windows and displays in pixels, so a display of 2880 pixels
/// on a desktop scaled by 2 is 1440 points wide.
double displayScale(const X11Connection& connection);

} // namespace zento
