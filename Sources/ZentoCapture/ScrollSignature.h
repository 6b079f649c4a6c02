#pragma once

#include "ZentoImaging/Canvas.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zento {

/// A small grey picture of a frame: every row of its pixels, squeezed to 48 values.
struct ScrollSignature {
    static constexpr std::size_t kColumns = 48;
    using Row = std::array<float, kColumns>; // [0, 255]

    std::vector<Row> rows; // from the top

    ScrollSignature() = default;
    explicit ScrollSignature(const Canvas& image);

    int height() const { return static_cast<int>(rows.size()); }

    /// By how many rows this frame's content lies above where it lay in `previous`, as far as grey
    /// values can tell: the least of the best matches. Nothing where nothing matches or a frame is
    /// too low to say.
    std::optional<int> shift(const ScrollSignature& previous) const;
};

/// The rows that a shift is measured in: without the bands in which bars stick to the frame's
/// edges.
struct ScrollBand {
    int top = 0;      // the first row
    int limit = 0;    // behind the last
    int maxShift = 0; // of the content; below 1 nothing can be measured

    explicit ScrollBand(int height);
};

/// What each row of a frame shows from column `first` up to `end`, to the bit. Rows with the same
/// value are the same; two that differ have the same value once in 2^64.
std::vector<std::uint64_t> rowHashes(const Canvas& image, int first, int end);

/// Every shift at which the band of one frame continues the other without a single different
/// pixel, from the smallest.
std::vector<int>
exactShifts(const std::vector<std::uint64_t>& previous, const std::vector<std::uint64_t>& current);

} // namespace zento
