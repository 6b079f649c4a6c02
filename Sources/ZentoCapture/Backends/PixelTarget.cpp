#include "ZentoCapture/Backends/PixelTarget.h"

#include <algorithm>

namespace zento {

namespace {

constexpr int kChannelBits = 8;
constexpr std::uint32_t kChannel = 0xFF;

PixelRect shared(const PixelTarget& target, const PixelTarget& source, const PixelRect& area)
{
    return intersection(intersection(target.rect, source.rect), area);
}

/// Every channel of a pixel from its values in the two.
template <typename Mix>
std::uint32_t mixed(std::uint32_t a, std::uint32_t b, Mix mix)
{
    std::uint32_t result = 0;
    for (int shift = 0; shift < 4 * kChannelBits; shift += kChannelBits) {
        result |= mix((a >> shift) & kChannel, (b >> shift) & kChannel) << shift;
    }
    return result;
}

std::uint32_t over(std::uint32_t source, std::uint32_t target)
{
    const std::uint32_t rest = kChannel - (source >> 24);
    return mixed(source, target, [rest](std::uint32_t s, std::uint32_t t) {
        return std::min(kChannel, s + (t * rest + kChannel / 2) / kChannel);
    });
}

} // namespace

void copyPixels(const PixelTarget& target, const PixelTarget& source, const PixelRect& area)
{
    const PixelRect part = shared(target, source, area);
    for (int y = part.y; y < part.bottom(); ++y) {
        std::copy_n(source.at(part.x, y), part.width, target.at(part.x, y));
    }
}

void blendPixels(const PixelTarget& target, const PixelTarget& source, const PixelRect& area)
{
    const PixelRect part = shared(target, source, area);
    for (int y = part.y; y < part.bottom(); ++y) {
        std::uint32_t* const out = target.at(part.x, y);
        std::transform(source.at(part.x, y), source.at(part.x, y) + part.width, out, out, over);
    }
}

void bridgePixels(const PixelTarget& target, const PixelRect& area)
{
    const PixelRect part = intersection(target.rect, area);
    const bool hasAbove = part.y > target.rect.y;
    const bool hasBelow = part.bottom() < target.rect.bottom();
    const auto steps = static_cast<std::uint32_t>(part.height) + 1;
    for (int x = part.x; x < part.right(); ++x) {
        const std::uint32_t last = hasBelow ? *target.at(x, part.bottom()) : 0;
        const std::uint32_t above = hasAbove ? *target.at(x, part.y - 1) : last;
        const std::uint32_t below = hasBelow ? last : above;
        for (std::uint32_t step = 1; step < steps; ++step) {
            const auto mix = [&](std::uint32_t a, std::uint32_t b) {
                return (a * (steps - step) + b * step) / steps;
            };
            *target.at(x, part.y + static_cast<int>(step) - 1) = mixed(above, below, mix);
        }
    }
}

} // namespace zento
