#pragma once

#include "DesktopTest.h"

#include <cstdint>

namespace zento {

/// A program's window that the window manager frames. The server paints it: one colour, and a mark
/// of `kMark` pixels in another colour in its top-left corner.
class ClientWindow {
public:
    static constexpr int kMark = 24;

    /// On the screen when it returns.
    ClientWindow(
        const std::string& display, int x, int y, int width, int height, std::uint32_t rgb);

    ~ClientWindow(); // nothing is left of it on the screen, its frame neither
    ClientWindow(const ClientWindow&) = delete;
    ClientWindow& operator=(const ClientWindow&) = delete;

    std::uint32_t id() const { return m_window; }

    // Requests to the window manager; wait for what they bring about.
    void moveTo(int x, int y);
    void resize(int width, int height);
    void minimise();
    void restore();

    // Done when they return; a closed window's frame is gone, too.
    void setColour(std::uint32_t rgb);
    void setMarkColour(std::uint32_t rgb);
    void close();

    /// Where its inside begins on the screen.
    Vec2 origin() const;

private:
    void paint(xcb_window_t window, std::uint32_t rgb);

    XcbConnection m_connection;
    xcb_window_t m_window = 0;
    xcb_window_t m_mark = 0;
    xcb_window_t m_frame = 0; // the window manager's
};

} // namespace zento
