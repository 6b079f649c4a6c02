#include "ZentoCapture/Backends/ScreenPixels.h"

#include <cstring>

namespace zento {

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000U;

void copyRow(const std::uint8_t* from, std::uint32_t* to, int width)
{
    std::memcpy(to, from, static_cast<std::size_t>(width) * sizeof(std::uint32_t));
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

using RowFunction = void (*)(const std::uint8_t*, std::uint32_t*, int);

RowFunction rowFunction(const PixelOrder& order)
{
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
