#include "ZentoCapture/Backends/FittedPicture.h"

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Convert.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace zento {

void FittedPicture::draw(
    const BgraView& source, double scale, std::uint32_t* pixels, int width, int height)
{
    // A product that falls just above a whole number is that number.
    constexpr double kRounding = 1e-6;
    const Vec2 size{
        std::min<double>(width, std::ceil(source.width * scale - kRounding)),
        std::min<double>(height, std::ceil(source.height * scale - kRounding))};
    if (m_scaled.isEmpty() || size != m_scaledSize || m_scaled.width() != width
        || m_scaled.height() != height) {
        m_scaled = Picture(width, height, Layout::Rgb);
        m_scaledSize = size;
    }
    const Picture planes = toPicture(source, Layout::Rgb);
    drawScaled(
        m_scaler,
        planes.view(),
        {.origin = {0, 0}, .scaleX = scale, .scaleY = scale},
        m_scaled.view(),
        {0, 0, size.x, size.y});
    const Canvas joined = toCanvas(m_scaled.view());
    for (int y = 0; y < height; ++y) {
        std::memcpy(
            pixels + std::ptrdiff_t{y} * width,
            joined.pixels().row(y),
            static_cast<std::size_t>(width) * sizeof(std::uint32_t));
    }
}

} // namespace zento
