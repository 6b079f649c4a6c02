#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zento {

/// A view of one rectangular array of samples. Owns nothing.
template <typename Sample>
struct Plane {
    Sample* data = nullptr;
    int width = 0; // samples
    int height = 0;
    std::ptrdiff_t stride = 0; // samples from one row to the next

    Sample* row(int y) const { return data + y * stride; }

    operator Plane<const Sample>() const // NOLINT(google-explicit-constructor): as for pointers
        requires(!std::is_const_v<Sample>)
    {
        return {data, width, height, stride};
    }
};

/// Views of a picture as Y', Cb and Cr, BT.709 limited range, chroma sited left (MPEG-2): 4:2:0 or
/// 4:2:2 by the height of the chroma planes. Samples of 16 bits hold 10-bit values.
template <typename Sample>
struct YuvPlanes {
    Plane<Sample> y;
    Plane<Sample> cb;
    Plane<Sample> cr;

    operator YuvPlanes<const Sample>() const // NOLINT(google-explicit-constructor): as for pointers
        requires(!std::is_const_v<Sample>)
    {
        return {y, cb, cr};
    }
};

/// A picture of 4-byte pixels in memory order B, G, R, x, as X11 and the portals deliver it.
struct BgraView {
    const std::uint8_t* data = nullptr;
    int width = 0; // pixels
    int height = 0;
    std::ptrdiff_t stride = 0; // bytes from one row to the next
};

} // namespace zento
