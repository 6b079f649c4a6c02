#include "ZentoCapture/Backends/X11Subject.h"

#include <cstring>

namespace zento {

X11Frames::X11Frames(const X11Connection& connection, int width, int height)
    : m_width(width)
    , m_height(height)
    , m_pixels{X11Pixels(connection), X11Pixels(connection)}
{
    for (X11Pixels& pixels : m_pixels) {
        pixels.reserve(width, height);
    }
}

BgraView X11Frames::view() const
{
    return {
        .data = m_pixels[m_next].data(),
        .width = m_width,
        .height = m_height,
        .stride = static_cast<std::ptrdiff_t>(rowBytes())};
}

void X11Frames::repeatLast()
{
    if (m_hasLast) {
        std::memcpy(next().data(), last().data(), byteCount());
    } else {
        std::memset(next().data(), 0, byteCount());
    }
}

bool X11Frames::isUnchanged() const
{
    return m_hasLast
           && std::memcmp(m_pixels[m_next].data(), m_pixels[1 - m_next].data(), byteCount()) == 0;
}

void X11Frames::keep()
{
    m_next = 1 - m_next;
    m_hasLast = true;
}

} // namespace zento
