#pragma once

#include <algorithm>

namespace zento {

/// A rectangle of the root window, in pixels.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int right() const { return x + width; }
    int bottom() const { return y + height; }
    bool isEmpty() const { return width <= 0 || height <= 0; }
    PixelRect movedBy(int dx, int dy) const { return {x + dx, y + dy, width, height}; }

    bool operator==(const PixelRect&) const = default;
};

inline PixelRect intersection(const PixelRect& a, const PixelRect& b)
{
    const int x = std::max(a.x, b.x);
    const int y = std::max(a.y, b.y);
    return {
        x,
        y,
        std::max(0, std::min(a.right(), b.right()) - x),
        std::max(0, std::min(a.bottom(), b.bottom()) - y)};
}

inline bool intersects(const PixelRect& a, const PixelRect& b)
{
    return !intersection(a, b).isEmpty();
}

} // namespace zento
