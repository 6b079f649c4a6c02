#include "ZentoImaging/Kernels/ShadowRows.hpp"

#include "ZentoImaging/Kernels/Targets.hpp"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ZentoImaging/Kernels/ShadowRows.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace zento::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

template <class Step>
HWY_INLINE void forEachSample(std::size_t count, Step step)
{
    const hn::CappedTag<std::int16_t, 32> wide;
    const hn::CappedTag<std::int16_t, 1> one;
    std::size_t x = 0;
    for (; x + hn::Lanes(wide) <= count; x += hn::Lanes(wide)) {
        step(wide, x);
    }
    for (; x < count; ++x) {
        step(one, x);
    }
}

template <class D>
HWY_INLINE hn::Vec<D> mixed(hn::Vec<D> from, hn::Vec<D> to, hn::Vec<D> share)
{
    return hn::Add(from, hn::MulFixedPoint15(hn::Sub(to, from), share));
}

void scaleProfileRow(
    const std::int16_t* profile, std::int16_t factor, std::size_t count, std::int16_t* out)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        hn::StoreU(hn::MulFixedPoint15(hn::LoadU(d, profile + x), hn::Set(d, factor)), d, out + x);
    });
}

void subtractPatchRow(const kernel::Patch& patch, std::size_t count, std::int16_t* out)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        using D = decltype(d);
        const auto right = hn::Set(d, patch.right);
        const auto above =
            mixed<D>(hn::LoadU(d, patch.above + x), hn::LoadU(d, patch.aboveNext + x), right);
        const auto below =
            mixed<D>(hn::LoadU(d, patch.below + x), hn::LoadU(d, patch.belowNext + x), right);
        const auto value = mixed<D>(above, below, hn::Set(d, patch.down));
        hn::StoreU(hn::Sub(hn::LoadU(d, out + x), value), d, out + x);
    });
}

void coverageToMaskRow(
    const std::int16_t* coverage, std::int16_t opacity, std::size_t count, std::uint8_t* mask)
{
    forEachSample(count, [=](auto d, std::size_t x) HWY_ATTR {
        const hn::Rebind<std::uint8_t, decltype(d)> bytes;
        const auto faded = hn::MulFixedPoint15(hn::LoadU(d, coverage + x), hn::Set(d, opacity));
        const auto rounded = hn::ShiftRight<7>(hn::Add(faded, hn::Set(d, 64)));
        hn::StoreU(hn::DemoteTo(bytes, rounded), bytes, mask + x);
    });
}

} // namespace
} // namespace zento::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zento {

HWY_EXPORT(scaleProfileRow);
HWY_EXPORT(subtractPatchRow);
HWY_EXPORT(coverageToMaskRow);

namespace kernel {

void scaleProfile(
    const std::int16_t* profile, std::int16_t factor, std::size_t count, std::int16_t* out)
{
    HWY_DYNAMIC_DISPATCH(scaleProfileRow)(profile, factor, count, out);
}

void subtractPatch(const Patch& patch, std::size_t count, std::int16_t* out)
{
    HWY_DYNAMIC_DISPATCH(subtractPatchRow)(patch, count, out);
}

void coverageToMask(
    const std::int16_t* coverage, std::int16_t opacity, std::size_t count, std::uint8_t* mask)
{
    HWY_DYNAMIC_DISPATCH(coverageToMaskRow)(coverage, opacity, count, mask);
}

} // namespace kernel
} // namespace zento
#endif
