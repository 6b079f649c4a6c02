#include "ZentoImaging/Blend.h"
#include "ZentoImaging/Kernels/Targets.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ZentoImaging/Kernels/BlendRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace zento::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Samples are worked on as 16-bit numbers: a product of two bytes fits.

template <class D>
HWY_INLINE hn::Vec<D> load([[maybe_unused]] D d, const std::uint8_t* from)
{
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<std::uint8_t, D>(), from));
}

template <class D>
HWY_INLINE void store([[maybe_unused]] D d, hn::Vec<D> values, std::uint8_t* to)
{
    const hn::Rebind<std::uint8_t, D> bytes;
    const hn::RebindToSigned<D> asSigned; // what is stored is at most 255
    hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(asSigned, values)), bytes, to);
}

// x / 255 rounded to the nearest, exact for x up to 255 * 255.
template <class D>
HWY_INLINE hn::Vec<D> dividedBy255([[maybe_unused]] D d, hn::Vec<D> x)
{
    const auto y = hn::Add(x, hn::Set(d, 128));
    return hn::ShiftRight<8>(hn::Add(y, hn::ShiftRight<8>(y)));
}

template <class D>
HWY_INLINE hn::Vec<D>
mixed([[maybe_unused]] D d, hn::Vec<D> below, hn::Vec<D> above, hn::Vec<D> mask)
{
    const auto rest = hn::Sub(hn::Set(d, 255), mask);
    return dividedBy255(d, hn::Add(hn::Mul(above, mask), hn::Mul(below, rest)));
}

/// Calls step(tag, position) for all samples, in vectors as wide as fit.
template <class Step>
HWY_INLINE void forEachSample(std::size_t count, Step step)
{
    const hn::CappedTag<std::uint16_t, 32> wide;
    const hn::CappedTag<std::uint16_t, 8> eight;
    const hn::CappedTag<std::uint16_t, 1> one;
    std::size_t x = 0;
    for (; x + hn::Lanes(wide) <= count; x += hn::Lanes(wide)) {
        step(wide, x);
    }
    for (; x + hn::Lanes(eight) <= count; x += hn::Lanes(eight)) {
        step(eight, x);
    }
    for (; x < count; ++x) {
        step(one, x);
    }
}

void blendConstantRow(
    std::uint8_t* row, const std::uint8_t* mask, std::uint8_t value, std::size_t count)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        store(d, mixed(d, load(d, row + x), hn::Set(d, value), load(d, mask + x)), row + x);
    });
}

void blendMaskedRow(
    std::uint8_t* out,
    const std::uint8_t* below,
    const std::uint8_t* above,
    const std::uint8_t* mask,
    std::size_t count)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        const auto mix = mixed(d, load(d, below + x), load(d, above + x), load(d, mask + x));
        store(d, mix, out + x);
    });
}

void blendPremultipliedRow(
    std::uint8_t* row,
    const std::uint8_t* premultiplied,
    const std::uint8_t* alpha,
    std::uint8_t opacity,
    std::size_t count)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        const auto faded = hn::Set(d, opacity);
        const auto one = hn::Set(d, 255);
        const auto a = dividedBy255(d, hn::Mul(load(d, alpha + x), faded));
        const auto color = hn::Mul(load(d, premultiplied + x), faded);
        const auto below = hn::Mul(load(d, row + x), hn::Sub(one, a));
        // Scaling may have left a colour above its alpha.
        const auto most = hn::Set(d, 255 * 255);
        const auto sum = hn::Min(hn::SaturatedAdd(below, color), most);
        store(d, dividedBy255(d, sum), row + x);
    });
}

void multiplyMaskRow(
    std::uint8_t* out, const std::uint8_t* a, const std::uint8_t* b, std::size_t count)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        store(d, dividedBy255(d, hn::Mul(load(d, a + x), load(d, b + x))), out + x);
    });
}

void scaleMaskRow(std::uint8_t* mask, std::uint8_t opacity, std::size_t count)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        const auto scaled = hn::Mul(load(d, mask + x), hn::Set(d, opacity));
        store(d, dividedBy255(d, scaled), mask + x);
    });
}

} // namespace
} // namespace zento::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zento {

HWY_EXPORT(blendConstantRow);
HWY_EXPORT(blendMaskedRow);
HWY_EXPORT(blendPremultipliedRow);
HWY_EXPORT(multiplyMaskRow);
HWY_EXPORT(scaleMaskRow);

void blendConstant(
    std::uint8_t* row, const std::uint8_t* mask, std::uint8_t value, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(blendConstantRow)(row, mask, value, count);
}

void blendMasked(
    std::uint8_t* out,
    const std::uint8_t* below,
    const std::uint8_t* above,
    const std::uint8_t* mask,
    std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(blendMaskedRow)(out, below, above, mask, count);
}

void blendPremultiplied(
    std::uint8_t* row,
    const std::uint8_t* premultiplied,
    const std::uint8_t* alpha,
    std::uint8_t opacity,
    std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(blendPremultipliedRow)(row, premultiplied, alpha, opacity, count);
}

void multiplyMasks(
    std::uint8_t* out, const std::uint8_t* a, const std::uint8_t* b, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(multiplyMaskRow)(out, a, b, count);
}

void scaleMask(std::uint8_t* mask, std::uint8_t opacity, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(scaleMaskRow)(mask, opacity, count);
}

std::uint8_t opacityByte(double opacity)
{
    const double limited = opacity > 0 ? (opacity < 1 ? opacity : 1) : 0;
    // std::lround is a call. NOLINTNEXTLINE(bugprone-incorrect-roundings): exact for [0, 255]
    return static_cast<std::uint8_t>(limited * 255 + 0.5);
}

} // namespace zento
#endif
