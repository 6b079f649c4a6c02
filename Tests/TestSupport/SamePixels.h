#pragma once

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Picture.h"

#include <algorithm>
#include <cstddef>

namespace zento::test {

template <typename Pixels>
bool sameRows(const Pixels& a, const Pixels& b)
{
    for (int y = 0; y < a.height; ++y)
        if (!std::equal(a.row(y), a.row(y) + a.width, b.row(y)))
            return false;
    return true;
}

/// Alike to the bit, and of one size.
inline bool samePixels(const Picture& a, const Picture& b)
{
    if (a.width() != b.width() || a.height() != b.height())
        return false;
    for (std::size_t p = 0; p < 3; ++p)
        if (!sameRows(a.plane(p), b.plane(p)))
            return false;
    return true;
}

inline bool samePixels(const Canvas& a, const Canvas& b)
{
    return a.width() == b.width() && a.height() == b.height() && sameRows(a.pixels(), b.pixels());
}

} // namespace zento::test
