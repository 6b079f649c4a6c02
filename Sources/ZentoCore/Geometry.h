#pragma once

namespace zento {

/// A point or a vector. In a session: recording pixels, origin at the top-left of the frame, y
/// down.
struct Vec2 {
    double x = 0;
    double y = 0;

    bool operator==(const Vec2&) const = default;
};

/// An axis-aligned rectangle; (x, y) is its top-left corner, in the space of `Vec2`.
struct Rect {
    double x = 0;
    double y = 0;
    double w = 0;
    double h = 0;

    Vec2 center() const { return {x + w * 0.5, y + h * 0.5}; }

    /// Grows the rectangle on every side by `fraction` of its size; a negative fraction shrinks it.
    Rect insetBy(double fraction) const
    {
        const double dx = fraction * w;
        const double dy = fraction * h;
        return {x - dx, y - dy, w + 2 * dx, h + 2 * dy};
    }

    bool operator==(const Rect&) const = default;
};

} // namespace zento
