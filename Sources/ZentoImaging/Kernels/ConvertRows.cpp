#include "ZentoImaging/Kernels/ConvertRows.hpp"

#include "ZentoImaging/Kernels/Targets.hpp"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ZentoImaging/Kernels/ConvertRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace zento::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::CappedTag<std::int16_t, 32>;
using Vector = hn::Vec<Wide>;

// A component is brought to 15 bits and multiplied by a weight of which 32768 is one; the product
// keeps 16 bits, rounded. Weights are those of BT.709 (0.2126, 0.7152, 0.0722) times the range of
// the result, times the power of two that fills 15 bits; those of chroma add up to nothing, so that
// grey stays grey.
struct Weights {
    std::int16_t red;
    std::int16_t green;
    std::int16_t blue;
};

// 219 / 255 and 224 / 255 of 8 bit, times 128.
constexpr Weights kLuma8{5983, 20127, 2032};
constexpr Weights kCb8{-3298, -11094, 14392};
constexpr Weights kCr8{14392, -13073, -1319};

/// Pixels as two vectors of 16-bit numbers: green above blue, alpha above red.
struct Pixels {
    Vector greenBlue;
    Vector alphaRed;
};

struct Components {
    Vector red;
    Vector green;
    Vector blue;
};

HWY_INLINE Vector lowByte(Vector v)
{
    const Wide d;
    return hn::ShiftLeft<7>(hn::And(v, hn::Set(d, 0xff)));
}

HWY_INLINE Vector highByte(Vector v)
{
    const Wide d;
    return hn::And(hn::ShiftRight<1>(v), hn::Set(d, 0x7f80));
}

HWY_INLINE Components componentsOf(const Pixels& p)
{
    return {lowByte(p.alphaRed), highByte(p.greenBlue), lowByte(p.greenBlue)};
}

HWY_INLINE Vector weighted(const Components& c, const Weights& w)
{
    const Wide d;
    return hn::Add(
        hn::Add(
            hn::MulFixedPoint15(c.red, hn::Set(d, w.red)),
            hn::MulFixedPoint15(c.green, hn::Set(d, w.green))),
        hn::MulFixedPoint15(c.blue, hn::Set(d, w.blue)));
}

#if HWY_TARGET == HWY_SCALAR

HWY_INLINE Vector pair(const std::uint8_t* bytes)
{
    const Wide d;
    return hn::Set(d, static_cast<std::int16_t>(bytes[0] | bytes[1] << 8));
}

HWY_INLINE Pixels loadPixels(const std::uint8_t* from)
{
    return {pair(from), pair(from + 2)};
}

#else

/// As many pixels as a vector has 16-bit numbers.
HWY_INLINE Pixels loadPixels(const std::uint8_t* from)
{
    const Wide d;
    const hn::Repartition<std::uint8_t, Wide> bytes;
    const auto low = hn::BitCast(d, hn::LoadU(bytes, from));
    const auto high = hn::BitCast(d, hn::LoadU(bytes, from + hn::Lanes(bytes)));
    return {hn::ConcatEven(d, high, low), hn::ConcatOdd(d, high, low)};
}

#endif

/// The last pixels of a row, followed by its last pixel again.
void copyRest(const std::uint8_t* pixels, std::size_t count, std::size_t all, std::uint8_t* out)
{
    std::memcpy(out, pixels, 4 * count);
    for (std::size_t i = count; i < all; ++i) {
        std::memcpy(out + 4 * i, pixels + 4 * (count - 1), 4);
    }
}

/// A plane's value of 7 fraction bits: the weighted colour and alpha's share of the plane's zero.
HWY_INLINE void storePlane(
    const Components& c, Vector alpha, const Weights& weights, std::int16_t zero, std::uint8_t* out)
{
    const Wide d;
    const hn::Rebind<std::uint8_t, Wide> bytes;
    const auto sum = hn::Add(weighted(c, weights), hn::MulFixedPoint15(alpha, hn::Set(d, zero)));
    const auto rounded = hn::ShiftRight<7>(hn::Add(sum, hn::Set(d, 64)));
    hn::StoreU(hn::DemoteTo(bytes, rounded), bytes, out);
}

/// One vector of pixels to four rows of 32 bytes at most.
HWY_INLINE void convertBlockYuv(
    const std::uint8_t* pixels,
    bool opaque,
    std::uint8_t* y,
    std::uint8_t* cb,
    std::uint8_t* cr,
    std::uint8_t* alphaOut)
{
    const Wide d;
    const hn::Rebind<std::uint8_t, Wide> bytes;
    const Pixels p = loadPixels(pixels);
    const Components c = componentsOf(p);
    const auto alpha = opaque ? hn::Set(d, 255 << 7) : highByte(p.alphaRed);
    constexpr std::int16_t kBlack = 2056;    // 16 / 255
    constexpr std::int16_t kNeutral = 16448; // 128 / 255
    storePlane(c, alpha, kLuma8, kBlack, y);
    storePlane(c, alpha, kCb8, kNeutral, cb);
    storePlane(c, alpha, kCr8, kNeutral, cr);
    if (alphaOut != nullptr) {
        hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<7>(alpha)), bytes, alphaOut);
    }
}

void convertRowYuv(
    const std::uint8_t* pixels,
    std::size_t width,
    bool opaque,
    std::uint8_t* y,
    std::uint8_t* cb,
    std::uint8_t* cr,
    std::uint8_t* alphaOut)
{
    const std::size_t step = hn::Lanes(Wide());
    std::size_t x = 0;
    for (; x + step <= width; x += step) {
        convertBlockYuv(
            pixels + 4 * x,
            opaque,
            y + x,
            cb + x,
            cr + x,
            alphaOut == nullptr ? nullptr : alphaOut + x);
    }
    if (x < width) {
        std::uint8_t rest[4 * 32];
        std::uint8_t out[4][32];
        const std::size_t count = width - x;
        copyRest(pixels + 4 * x, count, step, rest);
        convertBlockYuv(rest, opaque, out[0], out[1], out[2], out[3]);
        std::memcpy(y + x, out[0], count);
        std::memcpy(cb + x, out[1], count);
        std::memcpy(cr + x, out[2], count);
        if (alphaOut != nullptr) {
            std::memcpy(alphaOut + x, out[3], count);
        }
    }
}

} // namespace
} // namespace zento::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zento {

HWY_EXPORT(convertRowYuv);

namespace kernel {

void convertRowToYuv(
    const std::uint8_t* pixels,
    std::size_t width,
    Alpha alpha,
    std::uint8_t* y,
    std::uint8_t* cb,
    std::uint8_t* cr,
    std::uint8_t* alphaOut)
{
    HWY_DYNAMIC_DISPATCH(convertRowYuv)
    (pixels, width, alpha == Alpha::Opaque, y, cb, cr, alphaOut);
}

} // namespace kernel
} // namespace zento
#endif
