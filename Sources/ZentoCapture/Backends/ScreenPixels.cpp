#include "ZentoCapture/Backends/ScreenPixels.h"

#include <cstring>

namespace zento {

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000U;

void copyRow(const std::uint8_t* from, std::uint32_t* to, int width)
{
    for (int x = 0; x < width; ++x) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, from + std::ptrdiff_t{x} * 4, sizeof(pixel));
        to[x] = pixel | kOpaque; // what stands there is nobody's
    }
}

/// The compiler makes shuffles of it where the order is a constant.
template <int kBytes, int kBlue, int kGreen, int kRed>
void turnRow(const std::uint8_t* from, std::uint32_t* to, int width)
{
    for (int x = 0; x < width; ++x, from += kBytes) {
        to[x] = kOpaque | static_cast<std::uint32_t>(from[kRed]) << 16U
                | static_cast<std::uint32_t>(from[kGreen]) << 8U
                | static_cast<std::uint32_t>(from[kBlue]);
    }
}

/// 1023 becomes 255, and eight bits that were stretched to ten become what they were.
constexpr std::uint32_t eightBits(std::uint32_t ten)
{
    return (ten * 255U + 511U) / 1023U;
}

template <int kBlue, int kGreen, int kRed>
void turnDeepRow(const std::uint8_t* from, std::uint32_t* to, int width)
{
    constexpr std::uint32_t kTenBits = 0x3FF;
    for (int x = 0; x < width; ++x, from += 4) {
        const std::uint32_t word = static_cast<std::uint32_t>(from[0])
                                   | static_cast<std::uint32_t>(from[1]) << 8U
                                   | static_cast<std::uint32_t>(from[2]) << 16U
                                   | static_cast<std::uint32_t>(from[3]) << 24U;
        to[x] = kOpaque | eightBits(word >> kRed & kTenBits) << 16U
                | eightBits(word >> kGreen & kTenBits) << 8U | eightBits(word >> kBlue & kTenBits);
    }
}

using RowFunction = void (*)(const std::uint8_t*, std::uint32_t*, int);

RowFunction deepRowFunction(const PixelOrder& order)
{
    switch (order.blue) {
    case 0:
        return turnDeepRow<0, 10, 20>; // x, R, G, B from the highest bit down
    case 2:
        return turnDeepRow<2, 12, 22>; // R, G, B, x
    case 20:
        return turnDeepRow<20, 10, 0>; // x, B, G, R
    default:
        return turnDeepRow<22, 12, 2>; // B, G, R, x
    }
}

RowFunction rowFunction(const PixelOrder& order)
{
    if (order.bits == 10) {
        return deepRowFunction(order);
    }
    if (order.isBgrx()) {
        return copyRow;
    }
    if (order.bytes == 3) {
        return order.blue == 0 ? turnRow<3, 0, 1, 2> : turnRow<3, 2, 1, 0>;
    }
    if (order.blue == 2) {
        return turnRow<4, 2, 1, 0>; // R, G, B, x
    }
    return order.blue == 3 ? turnRow<4, 3, 2, 1>  // x, R, G, B
                           : turnRow<4, 1, 2, 3>; // x, B, G, R
}

} // namespace

void copyAsBgrx(const ForeignPicture& picture, const PixelRect& area, std::uint32_t* pixels)
{
    const RowFunction copy = rowFunction(picture.order);
    for (int y = 0; y < area.height; ++y) {
        const std::uint8_t* const row = picture.data + (area.y + y) * picture.stride
                                        + std::ptrdiff_t{area.x} * picture.order.bytes;
        copy(row, pixels + std::ptrdiff_t{y} * area.width, area.width);
    }
}

} // namespace zento
