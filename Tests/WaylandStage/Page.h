#pragma once

#include <cstdint>

namespace zento::test {

/// A page of stripes, none like another near it.
struct Page {
    static constexpr int kHeight = 2280; // points
    static constexpr int kNotch = 60;    // points, of a notch of the wheel
    static constexpr int kStripe = 12;   // points

    /// Of a row of points, as 0xFFRRGGBB.
    static std::uint32_t colour(int y)
    {
        const auto stripe = static_cast<std::uint32_t>(y / kStripe);
        const std::uint32_t mixed = (stripe + 1U) * 2654435761U;
        return 0xFF000000U | (mixed >> 8U);
    }
};

} // namespace zento::test
