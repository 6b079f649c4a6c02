#pragma once

#include "ZentoCapture/Backends/X11Pixels.h"
#include "ZentoCore/Plane.h"

#include <xcb/xcb.h>

#include <array>
#include <cstddef>

namespace zento {

/// The two pictures of a frame source: the one that is being made and the one that was last taken.
class X11Frames {
public:
    /// Throws `Error` of the domain "errno".
    X11Frames(const X11Connection& connection, int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t rowBytes() const { return static_cast<std::size_t>(m_width) * 4; }
    std::size_t byteCount() const { return rowBytes() * static_cast<std::size_t>(m_height); }

    X11Pixels& next() { return m_pixels[m_next]; } // its contents are old, not the last picture's
    BgraView view() const;                         // of the next picture
    bool hasLast() const { return m_hasLast; }
    X11Pixels& last() { return m_pixels[1 - m_next]; } // if `hasLast`

    /// Makes the next picture the same as the last one; black without one.
    void repeatLast();

    /// Whether the next picture equals the last one, pixel by pixel.
    bool isUnchanged() const;

    /// Takes the next picture as the last one.
    void keep();

private:
    int m_width;
    int m_height;
    std::array<X11Pixels, 2> m_pixels;
    std::size_t m_next = 0;
    bool m_hasLast = false;
};

/// What a frame source shows.
///
/// Threading: made by one thread, then used by one other. Every event of the connection that it was
/// made with comes to `handle`.
class X11Subject {
public:
    X11Subject() = default;
    virtual ~X11Subject() = default;
    X11Subject(const X11Subject&) = delete;
    X11Subject& operator=(const X11Subject&) = delete;

    enum class News : unsigned char { None, MayHaveChanged };

    virtual News handle(const xcb_generic_event_t& event) = 0;

    enum class Want : unsigned char { IfChanged, Always };

    /// Draws what there is to see now as the next picture. False when that is nothing new, or
    /// nothing can be seen at present.
    virtual bool draw(X11Frames& frames, Want want) = 0;

    /// Whether an event since then says that the picture is not what it was meant to be.
    virtual bool isOutdated() const = 0;
};

} // namespace zento
