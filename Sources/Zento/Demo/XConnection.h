#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

struct xcb_connection_t;

namespace zento {

/// What XCB hands out, to be given back with free().
struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename Reply>
using XReply = std::unique_ptr<Reply, FreeReply>;

/// Takes a reply of XCB into care: `own(xcb_intern_atom_reply(…))`. Null if the request failed.
template <typename Reply>
XReply<Reply> own(Reply* reply)
{
    return XReply<Reply>(reply);
}

/// The window behind all others.
struct RootWindow {
    std::uint32_t id = 0;
    std::uint16_t width = 0; // pixels
    std::uint16_t height = 0;
    std::uint8_t depth = 0; // bits a pixel
};

/// A connection to an X server's first screen, closed with the object.
class XConnection {
public:
    /// `display` as in DISPLAY, such as ":7". Throws `Error` kDesktopFailed.
    explicit XConnection(const std::string& display);

    xcb_connection_t* get() const { return m_connection.get(); }
    const RootWindow& root() const { return m_root; }

    /// The number of a name; the name becomes known if it was not.
    std::uint32_t atom(const std::string& name) const;

    void flush() const;

    /// Returns when the server has dealt with everything sent so far. False if it is gone.
    bool synchronise() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const;
    };
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    RootWindow m_root;
};

} // namespace zento
