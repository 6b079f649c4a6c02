#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zento::kernel {

// Weights are of 14 bits, 16384 being one. A row between the vertical and the horizontal pass has
// 14 bits: an 8-bit sample times 64, a 10-bit sample times 16. Each product is rounded on its own
// (multiply, halve the high part, round), which every processor does the same way.

inline constexpr int kOne = 16384;

/// out[x] = sum of weights[t] * rows[t][x].
void weightRows(
    const std::uint8_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out);
void weightRows(
    const std::uint16_t* const* rows, // 10-bit
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out);
void weightRows(
    const std::int16_t* const* rows, // of 15 bits: an 8-bit sample times 128
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out);

/// The same over 14-bit rows, to 8-bit samples: the horizontal half of a convolution, where the
/// "rows" are one row at growing offsets.
void weightRowsToBytes(
    const std::int16_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::uint8_t* out);

/// A horizontal pass by table lookup. Outputs go in blocks of eight; a block reads windows of 16
/// samples, `group` taps from each. For tap t of a group, output x picks from its window the sample
/// whose bytes are named at picks[(t * padded + x) * 2]: below 16 in the first half, 0x80 + n in
/// the second.
struct WindowTable {
    static constexpr std::size_t kBlock = 8;
    static constexpr std::size_t kWindow = 16;
    static constexpr std::size_t kPadding = 32; // outputs are padded to the widest vector

    std::size_t count = 0;  // outputs
    std::size_t padded = 0; // a multiple of kPadding
    int group = 0;          // taps a window serves
    int groups = 0;
    bool firstHalfOnly = false;        // no pick lies in the second half
    std::vector<std::int32_t> bases;   // [padded / kBlock]: first sample of the first window
    std::vector<std::uint8_t> picks;   // [group][padded * 2]
    std::vector<std::int16_t> weights; // [group * groups][padded]
};

/// Reads up to kWindow + group * groups samples from the last base on.
void scaleByWindows(const std::int16_t* row, const WindowTable& table, std::uint8_t* out);

/// A horizontal pass by dot products, for reductions so strong that windows do not reach.
struct DotTable {
    std::size_t count = 0;
    std::size_t taps = 0;              // a multiple of 8
    std::vector<std::int32_t> firsts;  // [count]
    std::vector<std::int16_t> weights; // [count][taps]
};

void scaleByDots(const std::int16_t* row, const DotTable& table, std::uint8_t* out);

} // namespace zento::kernel
