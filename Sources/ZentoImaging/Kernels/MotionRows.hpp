#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zento::kernel {

/// out = row as samples of 15 bits, with `margin` more samples on either side that repeat the row's
/// first and last.
void widenRow(const std::uint8_t* row, std::size_t count, std::size_t margin, std::int16_t* out);

/// A row drawn out or together a little, by linear interpolation: so little that the outputs of a
/// block read almost the same distance away, and what differs is left to the weights. Output x of
/// block b is the sum over t of weights[t * padded + x] * row[bases[b] + (x - b * kBlock) + t].
struct StretchTable {
    static constexpr std::size_t kBlock = 32; // a multiple of the widest vector

    std::size_t padded = 0; // outputs, a multiple of kBlock
    std::size_t taps = 0;
    std::vector<std::int32_t> bases;   // [padded / kBlock]
    std::vector<std::int16_t> weights; // [taps][padded], of 14 bits
};

/// So many rows at once share what is read of the table, which is more than a row.
inline constexpr int kStretchedRows = 4;

/// Rows in and out of equally many bits, at most 15. Writes `padded` samples of each row, and reads
/// kBlock + taps of them from each base on.
void stretchRows(
    const std::int16_t* const* rows, const StretchTable& table, std::int16_t* const* out);

} // namespace zento::kernel
