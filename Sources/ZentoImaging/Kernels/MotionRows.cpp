#include "ZentoImaging/Kernels/MotionRows.hpp"

#include "ZentoImaging/Kernels/Targets.hpp"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ZentoImaging/Kernels/MotionRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace zento::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::CappedTag<std::int16_t, 32>;

void widenSamples(const std::uint8_t* row, std::size_t count, std::int16_t* out)
{
    const Wide d;
    const hn::Rebind<std::uint8_t, Wide> bytes;
    std::size_t x = 0;
    for (; x + hn::Lanes(d) <= count; x += hn::Lanes(d)) {
        hn::StoreU(hn::ShiftLeft<7>(hn::PromoteTo(d, hn::LoadU(bytes, row + x))), d, out + x);
    }
    for (; x < count; ++x) {
        out[x] = static_cast<std::int16_t>(row[x] << 7);
    }
}

// `kTaps` is 0 for any number.
template <std::size_t kTaps>
HWY_INLINE void stretchBlocks(
    const std::int16_t* const* rows,
    const std::int32_t* bases,
    const std::int16_t* weights,
    std::size_t padded,
    std::size_t taps,
    std::int16_t* const* out)
{
    static_assert(kernel::kStretchedRows == 4);
    const Wide d;
    const std::size_t count = kTaps == 0 ? taps : kTaps;
    for (std::size_t x = 0; x < padded; x += hn::Lanes(d)) {
        const std::size_t inBlock = x % kernel::StretchTable::kBlock;
        const auto from =
            static_cast<std::size_t>(bases[x / kernel::StretchTable::kBlock]) + inBlock;
        auto s0 = hn::Zero(d);
        auto s1 = hn::Zero(d);
        auto s2 = hn::Zero(d);
        auto s3 = hn::Zero(d);
        for (std::size_t t = 0; t < count; ++t) {
            const auto weight = hn::LoadU(d, weights + t * padded + x);
            s0 = hn::Add(s0, hn::MulFixedPoint15(hn::LoadU(d, rows[0] + from + t), weight));
            s1 = hn::Add(s1, hn::MulFixedPoint15(hn::LoadU(d, rows[1] + from + t), weight));
            s2 = hn::Add(s2, hn::MulFixedPoint15(hn::LoadU(d, rows[2] + from + t), weight));
            s3 = hn::Add(s3, hn::MulFixedPoint15(hn::LoadU(d, rows[3] + from + t), weight));
        }
        // A weight of 14 bits halves the product.
        hn::StoreU(hn::Add(s0, s0), d, out[0] + x);
        hn::StoreU(hn::Add(s1, s1), d, out[1] + x);
        hn::StoreU(hn::Add(s2, s2), d, out[2] + x);
        hn::StoreU(hn::Add(s3, s3), d, out[3] + x);
    }
}

void stretchSamples(
    const std::int16_t* const* rows,
    const std::int32_t* bases,
    const std::int16_t* weights,
    std::size_t padded,
    std::size_t taps,
    std::int16_t* const* out)
{
    if (taps == 3) { // all there are in a film
        stretchBlocks<3>(rows, bases, weights, padded, taps, out);
    } else {
        stretchBlocks<0>(rows, bases, weights, padded, taps, out);
    }
}

} // namespace
} // namespace zento::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zento {

HWY_EXPORT(widenSamples);
HWY_EXPORT(stretchSamples);

namespace kernel {

void widenRow(const std::uint8_t* row, std::size_t count, std::size_t margin, std::int16_t* out)
{
    HWY_DYNAMIC_DISPATCH(widenSamples)(row, count, out + margin);
    std::fill_n(out, margin, out[margin]);
    std::fill_n(out + margin + count, margin, out[margin + count - 1]);
}

void stretchRows(
    const std::int16_t* const* rows, const StretchTable& table, std::int16_t* const* out)
{
    HWY_DYNAMIC_DISPATCH(stretchSamples)
    (rows, table.bases.data(), table.weights.data(), table.padded, table.taps, out);
}

} // namespace kernel
} // namespace zento
#endif
