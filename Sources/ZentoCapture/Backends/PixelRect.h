#pragma once

namespace zento {

/// A rectangle of the root window, in pixels.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect&) const = default;
};

inline bool intersects(const PixelRect& a, const PixelRect& b)
{
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height
           && b.y < a.y + a.height;
}

} // namespace zento
