#include "ZentoImaging/Kernels/ConvertRows.hpp"
#include "ZentoImaging/Kernels/Targets.hpp"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ZentoImaging/Kernels/CaptureRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace zento::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Sums are exact in 32 bits and rounded once. Weights are those of BT.709 (0.2126, 0.7152, 0.0722)
// times the range of the result; those of chroma add up to nothing, so that grey stays grey.
struct Weights {
    std::int16_t red;
    std::int16_t green;
    std::int16_t blue;
};

// 876 / 255 times 8192: the largest power of two for which green's share is a 16-bit number.
constexpr int kLumaBits = 13;
constexpr Weights kLuma{5983, 20127, 2032};
// 896 / 255 times 16384, for components added up (1 2 1): the result is the upper half of 32 bits.
constexpr int kChromaBits = 16;
constexpr Weights kCb{-6596, -22189, 28785};
constexpr Weights kCr{28785, -26146, -2639};

constexpr std::int32_t offset(int value, int bits)
{
    return (value << bits) + (1 << (bits - 1));
}
constexpr std::int32_t kLumaOffset = offset(64, kLumaBits);
constexpr std::int32_t kChromaOffset = offset(512, kChromaBits);

#if HWY_TARGET == HWY_SCALAR

constexpr std::size_t kBlock = 2; // pixels

std::int32_t weighted(const std::int32_t* bgr, const Weights& weights)
{
    return bgr[0] * weights.blue + bgr[1] * weights.green + bgr[2] * weights.red;
}

void convertBlock(
    const std::uint8_t* pixels, std::uint16_t* y, std::uint16_t* cb, std::uint16_t* cr)
{
    std::int32_t bgr[3];
    for (int i = 0; i < 2; ++i) {
        std::copy_n(pixels + 4 * i, 3, bgr);
        y[i] = static_cast<std::uint16_t>((weighted(bgr, kLuma) + kLumaOffset) >> kLumaBits);
    }
    for (int i = 0; i < 3; ++i) {
        bgr[i] = pixels[i - 4] + 2 * pixels[i] + pixels[i + 4];
    }
    *cb = static_cast<std::uint16_t>((weighted(bgr, kCb) + kChromaOffset) >> kChromaBits);
    *cr = static_cast<std::uint16_t>((weighted(bgr, kCr) + kChromaOffset) >> kChromaBits);
}

#else

using Sums = hn::CappedTag<std::int32_t, 16>; // one for each pixel
using Halves = hn::Repartition<std::int16_t, Sums>;

constexpr std::size_t kBlock = 4 * hn::MaxLanes(Sums()); // pixels

/// Pixels as pairs of 16-bit numbers: red above blue, what is of no interest above green.
struct Components {
    hn::Vec<Halves> blueRed;
    hn::Vec<Halves> green;
};

HWY_INLINE Components componentsOf(hn::Vec<Sums> pixels)
{
    const Halves d;
    const hn::RebindToUnsigned<Halves> du;
    const auto pairs = hn::BitCast(du, pixels);
    return {
        hn::BitCast(d, hn::And(pairs, hn::Set(du, 0xff))),
        hn::BitCast(d, hn::ShiftRight<8>(pairs))};
}

struct Split {
    Components even;
    Components odd;
};

/// The even and the odd ones of two vectors of pixels.
HWY_INLINE Split loadSplit(const std::uint8_t* from)
{
    const Sums d;
    const hn::Repartition<std::uint8_t, Sums> bytes;
    const auto low = hn::BitCast(d, hn::LoadU(bytes, from));
    const auto high = hn::BitCast(d, hn::LoadU(bytes, from + hn::Lanes(bytes)));
    return {componentsOf(hn::ConcatEven(d, high, low)), componentsOf(hn::ConcatOdd(d, high, low))};
}

/// first * low + second * high of every pair.
HWY_INLINE hn::Vec<Halves> pairWeights(std::int16_t low, std::int16_t high)
{
    const Halves d;
    return hn::OddEven(hn::Set(d, high), hn::Set(d, low));
}

HWY_INLINE hn::Vec<Sums> weighted(const Components& c, const Weights& weights, std::int32_t start)
{
    const Sums d;
    auto sum = hn::Set(d, start);
    auto rest = hn::Zero(d);
    sum = hn::ReorderWidenMulAccumulate(
        d, c.blueRed, pairWeights(weights.blue, weights.red), sum, rest);
    sum = hn::ReorderWidenMulAccumulate(d, c.green, pairWeights(weights.green, 0), sum, rest);
    return hn::RearrangeToOddPlusEven(sum, rest);
}

HWY_INLINE hn::Vec<Halves>
oneTwoOne(hn::Vec<Halves> before, hn::Vec<Halves> center, hn::Vec<Halves> after)
{
    return hn::Add(hn::Add(before, after), hn::Add(center, center));
}

/// Two vectors of pixels.
struct Converted {
    hn::Vec<Halves> luma;
    hn::Vec<Sums> cb; // the result lies in the upper halves
    hn::Vec<Sums> cr;
};

HWY_INLINE Converted convertPart(const std::uint8_t* pixels)
{
    const Halves d;
    const auto [even, odd] = loadSplit(pixels);
    const Components before = loadSplit(pixels - 4).even;
    const auto evenLuma = weighted(even, kLuma, kLumaOffset);
    const auto oddLuma = weighted(odd, kLuma, kLumaOffset);
    const Components mean{
        oneTwoOne(before.blueRed, even.blueRed, odd.blueRed),
        oneTwoOne(before.green, even.green, odd.green)};
    return {
        hn::OddEven(
            hn::BitCast(d, hn::ShiftLeft<16 - kLumaBits>(oddLuma)),
            hn::BitCast(d, hn::ShiftRight<kLumaBits>(evenLuma))),
        weighted(mean, kCb, kChromaOffset),
        weighted(mean, kCr, kChromaOffset)};
}

HWY_INLINE void storeUpperHalves(hn::Vec<Sums> low, hn::Vec<Sums> high, std::uint16_t* out)
{
    const hn::RebindToUnsigned<Halves> du;
    hn::StoreU(hn::ConcatOdd(du, hn::BitCast(du, high), hn::BitCast(du, low)), du, out);
}

/// The pixel before and the one behind are read as well.
HWY_INLINE void
convertBlock(const std::uint8_t* pixels, std::uint16_t* y, std::uint16_t* cb, std::uint16_t* cr)
{
    const hn::RebindToUnsigned<Halves> du;
    const Converted low = convertPart(pixels);
    const Converted high = convertPart(pixels + 2 * kBlock);
    hn::StoreU(hn::BitCast(du, low.luma), du, y);
    hn::StoreU(hn::BitCast(du, high.luma), du, y + kBlock / 2);
    storeUpperHalves(low.cb, high.cb, cb);
    storeUpperHalves(low.cr, high.cr, cr);
}

#endif

/// A block at an end of the row, beyond which its last pixel goes on.
void convertEnd(
    const std::uint8_t* pixels,
    std::size_t width,
    std::size_t x,
    std::uint16_t* y,
    std::uint16_t* cb,
    std::uint16_t* cr)
{
    std::uint8_t block[4 * (1 + kBlock)];
    std::uint16_t luma[kBlock];
    std::uint16_t chroma[2][kBlock / 2];
    for (std::size_t i = 0; i <= kBlock; ++i) {
        const std::size_t from = std::min(std::max(x + i, std::size_t{1}) - 1, width - 1);
        std::memcpy(block + 4 * i, pixels + 4 * from, 4);
    }
    convertBlock(block + 4, luma, chroma[0], chroma[1]);
    const std::size_t count = std::min(kBlock, width - x);
    std::copy_n(luma, count, y + x);
    std::copy_n(chroma[0], (count + 1) / 2, cb + x / 2);
    std::copy_n(chroma[1], (count + 1) / 2, cr + x / 2);
}

void convertRow422(
    const std::uint8_t* pixels,
    std::size_t width,
    std::uint16_t* y,
    std::uint16_t* cb,
    std::uint16_t* cr)
{
    convertEnd(pixels, width, 0, y, cb, cr);
    std::size_t x = kBlock;
    for (; x + kBlock <= width; x += kBlock) {
        convertBlock(pixels + 4 * x, y + x, cb + x / 2, cr + x / 2);
    }
    if (x < width) {
        convertEnd(pixels, width, x, y, cb, cr);
    }
}

} // namespace
} // namespace zento::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zento {

HWY_EXPORT(convertRow422);

namespace kernel {

void convertRowTo422(
    const std::uint8_t* pixels,
    std::size_t width,
    std::uint16_t* y,
    std::uint16_t* cb,
    std::uint16_t* cr)
{
    HWY_DYNAMIC_DISPATCH(convertRow422)(pixels, width, y, cb, cr);
}

} // namespace kernel
} // namespace zento
#endif
