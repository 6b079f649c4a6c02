#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCore/Plane.h"

#include <xcb/shm.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zento {

/// Copies a rectangle of the screen out of the server, without the pointer.
///
/// The server writes into memory it shares with us (0.3 ms for 1920 × 1080); where that cannot be,
/// the pixels come through the connection (about 4 ms). Two buffers take turns, so that a picture
/// can be compared with the one before.
///
/// Threading: one thread.
class X11Grabber {
public:
    /// Throws `Error` for a screen whose pixels are not of 32 bits in the order B, G, R.
    X11Grabber(const X11Connection& connection, const PixelRect& rect);

    /// The picture now; valid until the call after the next `keep`. Nothing when the server
    /// refuses, as it does when the screen has become too small, or is gone.
    std::optional<BgraView> grab();

    /// Whether the last picture equals the kept one, pixel by pixel.
    bool isUnchanged() const;

    /// Keeps the last picture; the next goes to the other buffer.
    void keep();

private:
    /// Memory that the server writes to.
    class SharedPicture {
    public:
        SharedPicture() = default;
        ~SharedPicture();
        SharedPicture(const SharedPicture&) = delete;
        SharedPicture& operator=(const SharedPicture&) = delete;

        bool attach(const X11Connection& connection, std::size_t byteCount);

        xcb_shm_seg_t segment() const { return m_segment; }
        const std::uint8_t* data() const { return m_data; }

    private:
        std::uint8_t* m_data = nullptr;
        std::size_t m_byteCount = 0;
        xcb_shm_seg_t m_segment = 0;
    };

    struct Buffer {
        SharedPicture shared;
        XcbPtr<xcb_get_image_reply_t> reply; // where nothing is shared
        const std::uint8_t* data = nullptr;  // of one of the two
    };

    bool grabShared(Buffer& buffer);
    bool grabByReply(Buffer& buffer);
    std::size_t byteCount() const;

    const X11Connection& m_connection;
    PixelRect m_rect;
    bool m_sharesMemory = false;
    std::array<Buffer, 2> m_buffers;
    std::size_t m_current = 0;
};

} // namespace zento
