#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/X11Connection.h"

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>

namespace zento {

/// Throws `Error` for a screen whose pixels are not of 32 bits in the order B, G, R.
void requireSupportedPixels(const X11Connection& connection);

/// Memory for a picture out of the server: rows of 4-byte pixels B, G, R and alpha (or anything,
/// where there is none), one after the other.
///
/// The server writes into memory it shares with us (0.3 ms for 1920 × 1080); where that cannot be,
/// the pixels come through the connection (about 4 ms).
///
/// Threading: one thread. The connection must outlive it.
class X11Pixels {
public:
    explicit X11Pixels(const X11Connection& connection)
        : m_connection(connection)
    {
    }
    ~X11Pixels();
    X11Pixels(const X11Pixels&) = delete;
    X11Pixels& operator=(const X11Pixels&) = delete;

    /// Makes room for that many pixels; what was there is lost if it was too small. Throws `Error`
    /// of the domain "errno".
    void reserve(int width, int height);

    /// Reads a rectangle of a window or pixmap, without the pointer. False when the server refuses:
    /// the drawable is gone, hidden or has become too small, or has other pixels than ours.
    bool read(xcb_drawable_t drawable, const PixelRect& rect);

    std::uint8_t* data() { return m_data; }
    const std::uint8_t* data() const { return m_data; }
    std::uint32_t* pixels() { return reinterpret_cast<std::uint32_t*>(m_data); }

private:
    bool readShared(xcb_drawable_t drawable, const PixelRect& rect);
    bool readByReply(xcb_drawable_t drawable, const PixelRect& rect);
    void release();

    const X11Connection& m_connection;
    std::uint8_t* m_data = nullptr;
    std::size_t m_byteCount = 0;
    xcb_shm_seg_t m_segment = XCB_NONE; // none where nothing is shared
};

} // namespace zento
