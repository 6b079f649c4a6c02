#include "ZentoImaging/Kernels/ScaleRows.hpp"

#include "ZentoImaging/Kernels/Targets.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ZentoImaging/Kernels/ScaleRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace zento::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::CappedTag<std::int16_t, 32>;
using Eight = hn::CappedTag<std::int16_t, 8>;
using One = hn::CappedTag<std::int16_t, 1>;

// A sample brought to 15 bits: the product with a 14-bit weight, of which the instruction keeps the
// upper 16 of 31 bits, then has 14.
template <class D>
HWY_INLINE hn::Vec<D> loadSamples([[maybe_unused]] D d, const std::uint8_t* from)
{
    return hn::ShiftLeft<7>(hn::PromoteTo(d, hn::LoadU(hn::Rebind<std::uint8_t, D>(), from)));
}

template <class D>
HWY_INLINE hn::Vec<D> loadSamples([[maybe_unused]] D d, const std::uint16_t* from)
{
    return hn::ShiftLeft<5>(hn::BitCast(d, hn::LoadU(hn::Rebind<std::uint16_t, D>(), from)));
}

template <class D>
HWY_INLINE hn::Vec<D> loadSamples([[maybe_unused]] D d, const std::int16_t* from)
{
    return hn::LoadU(d, from);
}

template <class D>
HWY_INLINE void storeRow([[maybe_unused]] D d, hn::Vec<D> sum, std::int16_t* out)
{
    hn::StoreU(sum, d, out);
}

// 13 bits to 8.
template <class D>
HWY_INLINE void storeRow([[maybe_unused]] D d, hn::Vec<D> sum, std::uint8_t* out)
{
    const hn::Rebind<std::uint8_t, D> bytes;
    const auto rounded = hn::ShiftRight<5>(hn::Add(sum, hn::Set(d, 16)));
    hn::StoreU(hn::DemoteTo(bytes, rounded), bytes, out);
}

template <class D, typename In, typename Out>
HWY_INLINE std::size_t weightFour(
    D d,
    const In* const* rows,
    const std::int16_t* weights,
    std::size_t from,
    std::size_t count,
    Out* out)
{
    const auto w0 = hn::Set(d, weights[0]);
    const auto w1 = hn::Set(d, weights[1]);
    const auto w2 = hn::Set(d, weights[2]);
    const auto w3 = hn::Set(d, weights[3]);
    const In* r0 = rows[0];
    const In* r1 = rows[1];
    const In* r2 = rows[2];
    const In* r3 = rows[3];
    std::size_t x = from;
    for (; x + hn::Lanes(d) <= count; x += hn::Lanes(d)) {
        const auto a = hn::Add(
            hn::MulFixedPoint15(loadSamples(d, r0 + x), w0),
            hn::MulFixedPoint15(loadSamples(d, r1 + x), w1));
        const auto b = hn::Add(
            hn::MulFixedPoint15(loadSamples(d, r2 + x), w2),
            hn::MulFixedPoint15(loadSamples(d, r3 + x), w3));
        storeRow(d, hn::Add(a, b), out + x);
    }
    return x;
}

template <class D, typename In, typename Out>
HWY_INLINE std::size_t weightMany(
    D d,
    const In* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t from,
    std::size_t count,
    Out* out)
{
    const std::size_t lanes = hn::Lanes(d);
    std::size_t x = from;
    for (; x + 2 * lanes <= count; x += 2 * lanes) { // two at a time share weights and addresses
        auto a = hn::Zero(d);
        auto b = hn::Zero(d);
        for (int t = 0; t < taps; ++t) {
            const auto w = hn::Set(d, weights[t]);
            a = hn::Add(a, hn::MulFixedPoint15(loadSamples(d, rows[t] + x), w));
            b = hn::Add(b, hn::MulFixedPoint15(loadSamples(d, rows[t] + x + lanes), w));
        }
        storeRow(d, a, out + x);
        storeRow(d, b, out + x + lanes);
    }
    for (; x + lanes <= count; x += lanes) {
        auto a = hn::Zero(d);
        for (int t = 0; t < taps; ++t) {
            const auto w = hn::Set(d, weights[t]);
            a = hn::Add(a, hn::MulFixedPoint15(loadSamples(d, rows[t] + x), w));
        }
        storeRow(d, a, out + x);
    }
    return x;
}

template <typename In, typename Out>
HWY_INLINE void
weightAll(const In* const* rows, const std::int16_t* weights, int taps, std::size_t count, Out* out)
{
    std::size_t x = taps == 4 ? weightFour(Wide(), rows, weights, 0, count, out)
                              : weightMany(Wide(), rows, weights, taps, 0, count, out);
    x = weightMany(Eight(), rows, weights, taps, x, count, out);
    weightMany(One(), rows, weights, taps, x, count, out);
}

void weightRows8(
    const std::uint8_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out)
{
    weightAll(rows, weights, taps, count, out);
}

void weightRows10(
    const std::uint16_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out)
{
    weightAll(rows, weights, taps, count, out);
}

void weightRows15(
    const std::int16_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out)
{
    weightAll(rows, weights, taps, count, out);
}

void weightRows14(
    const std::int16_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::uint8_t* out)
{
    weightAll(rows, weights, taps, count, out);
}

#if HWY_TARGET == HWY_SCALAR

void scaleByWindowsOf(
    const std::int16_t* row,
    std::size_t count,
    std::size_t padded,
    int group,
    int groups,
    bool,
    const std::int32_t* bases,
    const std::uint8_t* picks,
    const std::int16_t* weights,
    std::uint8_t* out)
{
    const One d;
    for (std::size_t x = 0; x < count; ++x) {
        auto sum = hn::Zero(d);
        const std::int16_t* w = weights + x;
        const std::int16_t* window = row + bases[x / 8];
        for (int g = 0; g < groups; ++g, window += group) {
            const std::uint8_t* pick = picks + 2 * x;
            for (int t = 0; t < group; ++t, pick += 2 * padded, w += padded) {
                const int byte = (*pick & 0x0f) + (*pick >= 0x80 ? 16 : 0);
                const auto picked = hn::Set(d, window[byte / 2]);
                sum = hn::Add(sum, hn::MulFixedPoint15(picked, hn::Set(d, *w)));
            }
        }
        storeRow(d, sum, out + x);
    }
}

std::int32_t dotProduct(const std::int16_t* a, const std::int16_t* b, std::size_t count)
{
    std::int32_t total = 0;
    for (std::size_t i = 0; i < count; ++i) {
        total += a[i] * b[i];
    }
    return total;
}

#else

/// One block of 16 bytes per base, side by side.
template <class D>
HWY_INLINE hn::Vec<D>
loadBlocks([[maybe_unused]] D d, const std::int16_t* row, const std::int32_t* bases)
{
    constexpr std::size_t kBlocks = hn::MaxLanes(D()) / 8;
    if constexpr (kBlocks <= 1) {
        return hn::LoadU(d, row + bases[0]);
    } else {
        const hn::Half<D> half;
        return hn::Combine(
            d, loadBlocks(half, row, bases + kBlocks / 2), loadBlocks(half, row, bases));
    }
}

enum class Halves { First, Both };

template <Halves kHalves>
HWY_INLINE void scaleWindows(
    const std::int16_t* row,
    std::size_t count,
    std::size_t padded,
    int group,
    int groups,
    const std::int32_t* bases,
    const std::uint8_t* picks,
    const std::int16_t* weights,
    std::uint8_t* out)
{
    const Wide d;
    const hn::Repartition<std::uint8_t, Wide> bytes;
    const std::size_t lanes = hn::Lanes(d);
    const auto otherHalf = hn::Set(bytes, 0x80);
    HWY_ALIGN std::uint8_t rest[64];
    for (std::size_t x = 0; x < count; x += lanes) {
        auto sum = hn::Zero(d);
        const std::int16_t* w = weights + x;
        const std::int16_t* window = row;
        for (int g = 0; g < groups; ++g, window += group) {
            const auto first = hn::BitCast(bytes, loadBlocks(d, window, bases + x / 8));
            const auto second = kHalves == Halves::Both
                                    ? hn::BitCast(bytes, loadBlocks(d, window + 8, bases + x / 8))
                                    : first;
            const std::uint8_t* pick = picks + 2 * x;
            for (int t = 0; t < group; ++t, pick += 2 * padded, w += padded) {
                const auto index = hn::LoadU(bytes, pick);
                auto picked = hn::TableLookupBytesOr0(first, index);
                if constexpr (kHalves == Halves::Both) {
                    picked =
                        hn::Or(picked, hn::TableLookupBytesOr0(second, hn::Xor(index, otherHalf)));
                }
                sum = hn::Add(sum, hn::MulFixedPoint15(hn::BitCast(d, picked), hn::LoadU(d, w)));
            }
        }
        if (x + lanes <= count) {
            storeRow(d, sum, out + x);
        } else {
            storeRow(d, sum, rest);
            for (std::size_t i = x; i < count; ++i) {
                out[i] = rest[i - x];
            }
        }
    }
}

void scaleByWindowsOf(
    const std::int16_t* row,
    std::size_t count,
    std::size_t padded,
    int group,
    int groups,
    bool firstHalfOnly,
    const std::int32_t* bases,
    const std::uint8_t* picks,
    const std::int16_t* weights,
    std::uint8_t* out)
{
    if (firstHalfOnly) {
        scaleWindows<Halves::First>(row, count, padded, group, groups, bases, picks, weights, out);
    } else {
        scaleWindows<Halves::Both>(row, count, padded, group, groups, bases, picks, weights, out);
    }
}

std::int32_t dotProduct(const std::int16_t* a, const std::int16_t* b, std::size_t count)
{
    const hn::FixedTag<std::int16_t, 8> d;
    const hn::FixedTag<std::int32_t, 4> d32;
    auto sum = hn::Zero(d32);
    auto other = hn::Zero(d32);
    for (std::size_t i = 0; i < count; i += 8) {
        sum = hn::ReorderWidenMulAccumulate(
            d32, hn::LoadU(d, a + i), hn::LoadU(d, b + i), sum, other);
    }
    return hn::GetLane(hn::SumOfLanes(d32, hn::Add(sum, other)));
}

#endif

void scaleByDotsOf(
    const std::int16_t* row,
    std::size_t count,
    std::size_t taps,
    const std::int32_t* firsts,
    const std::int16_t* weights,
    std::uint8_t* out)
{
    for (std::size_t x = 0; x < count; ++x, weights += taps) {
        const std::int32_t total = dotProduct(row + firsts[x], weights, taps);
        const std::int32_t value = (total + (1 << 19)) >> 20;
        out[x] = static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    }
}

} // namespace
} // namespace zento::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zento {

HWY_EXPORT(weightRows8);
HWY_EXPORT(weightRows10);
HWY_EXPORT(weightRows15);
HWY_EXPORT(weightRows14);
HWY_EXPORT(scaleByWindowsOf);
HWY_EXPORT(scaleByDotsOf);

namespace kernel {

void weightRows(
    const std::uint8_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out)
{
    HWY_DYNAMIC_DISPATCH(weightRows8)(rows, weights, taps, count, out);
}

void weightRows(
    const std::uint16_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out)
{
    HWY_DYNAMIC_DISPATCH(weightRows10)(rows, weights, taps, count, out);
}

void weightRows(
    const std::int16_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::int16_t* out)
{
    HWY_DYNAMIC_DISPATCH(weightRows15)(rows, weights, taps, count, out);
}

void weightRowsToBytes(
    const std::int16_t* const* rows,
    const std::int16_t* weights,
    int taps,
    std::size_t count,
    std::uint8_t* out)
{
    HWY_DYNAMIC_DISPATCH(weightRows14)(rows, weights, taps, count, out);
}

void scaleByWindows(const std::int16_t* row, const WindowTable& table, std::uint8_t* out)
{
    HWY_DYNAMIC_DISPATCH(scaleByWindowsOf)
    (row,
     table.count,
     table.padded,
     table.group,
     table.groups,
     table.firstHalfOnly,
     table.bases.data(),
     table.picks.data(),
     table.weights.data(),
     out);
}

void scaleByDots(const std::int16_t* row, const DotTable& table, std::uint8_t* out)
{
    HWY_DYNAMIC_DISPATCH(scaleByDotsOf)
    (row, table.count, table.taps, table.firsts.data(), table.weights.data(), out);
}

} // namespace kernel
} // namespace zento
#endif
