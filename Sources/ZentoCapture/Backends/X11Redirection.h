#pragma once

#include "ZentoCapture/Backends/X11Connection.h"

#include <xcb/composite.h>

#include <utility>

namespace zento {

/// Throws `Error` when the server cannot keep the pictures of covered windows.
void requireComposite(const X11Connection& connection);

/// The picture of a top-level window, also where others cover it; none while the server has none,
/// because the window is not mapped. The window's redirection must have been asked for.
///
/// It keeps the size the window had when this was made: a resized window draws into a new one.
///
/// Threading: one thread. The connection must outlive it.
class X11WindowPixmap {
public:
    X11WindowPixmap() = default;
    X11WindowPixmap(const X11Connection& connection, xcb_window_t window);
    ~X11WindowPixmap();
    X11WindowPixmap(X11WindowPixmap&& other) noexcept
        : m_connection(other.m_connection)
        , m_pixmap(std::exchange(other.m_pixmap, XCB_NONE))
    {
    }
    X11WindowPixmap& operator=(X11WindowPixmap&& other) noexcept
    {
        std::swap(m_connection, other.m_connection);
        std::swap(m_pixmap, other.m_pixmap);
        return *this;
    }

    xcb_pixmap_t get() const { return m_pixmap; } // XCB_NONE without a picture

private:
    const X11Connection* m_connection = nullptr;
    xcb_pixmap_t m_pixmap = XCB_NONE;
};

} // namespace zento
