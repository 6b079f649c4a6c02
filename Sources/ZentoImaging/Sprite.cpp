#include "ZentoImaging/Sprite.h"

#include "ZentoImaging/Blend.h"
#include "ZentoImaging/Kernels/ConvertRows.hpp"
#include "ZentoImaging/Scale.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>

namespace zento {

namespace {

/// Takes a row apart without changing its values.
void splitRow(
    const std::uint32_t* pixels,
    int width,
    std::uint8_t* red,
    std::uint8_t* green,
    std::uint8_t* blue,
    std::uint8_t* alpha)
{
    for (int x = 0; x < width; ++x) {
        alpha[x] = static_cast<std::uint8_t>(pixels[x] >> 24);
        red[x] = static_cast<std::uint8_t>(pixels[x] >> 16);
        green[x] = static_cast<std::uint8_t>(pixels[x] >> 8);
        blue[x] = static_cast<std::uint8_t>(pixels[x]);
    }
}

void clear(const PictureView& picture)
{
    for (const Plane<std::uint8_t>& plane : picture.planes) {
        std::memset(plane.data, 0, std::size_t(plane.stride) * std::size_t(plane.height));
    }
}

/// The samples a stretch of the destination can show something in: a kernel reaches two samples of
/// the destination where it is stretched.
SampleRange reached(const AxisPlacement& placement, int sourceSize)
{
    constexpr double kReach = 2;
    const double a = placement.origin;
    const double b = placement.origin + placement.scale * sourceSize;
    return {int(std::floor(std::min(a, b) - kReach)), int(std::ceil(std::max(a, b) + kReach))};
}

} // namespace

Sprite::Sprite(const Canvas& canvas, Layout layout)
    : m_layout(layout)
    , m_width(canvas.width())
    , m_height(canvas.height())
    , m_colors(m_width + 2 * kBorder, m_height + 2 * kBorder, Layout::Rgb)
    , m_alpha(m_width + 2 * kBorder, m_height + 2 * kBorder, Layout::Rgb)
{
    clear(m_colors.view());
    clear(m_alpha.view());
    const Plane<const std::uint32_t> pixels = canvas.pixels();
    for (int y = 0; y < m_height; ++y) {
        const auto row = [&](Picture& picture, std::size_t i) {
            return picture.plane(i).row(y + kBorder) + kBorder;
        };
        std::uint8_t* a = row(m_colors, 0);
        std::uint8_t* b = row(m_colors, 1);
        std::uint8_t* c = row(m_colors, 2);
        std::uint8_t* alpha = row(m_alpha, 0);
        if (layout == Layout::Rgb) {
            splitRow(pixels.row(y), m_width, a, b, c, alpha);
        } else {
            kernel::convertRowToYuv(
                reinterpret_cast<const std::uint8_t*>(pixels.row(y)),
                std::size_t(m_width),
                kernel::Alpha::Kept,
                a,
                b,
                c,
                alpha);
        }
    }
}

Plane<const std::uint8_t> Sprite::plane(std::size_t index) const
{
    return index < 3 ? m_colors.plane(index) : m_alpha.plane(0);
}

PlacedSprite::PlacedSprite(const Sprite& sprite, Vec2 origin, double scale)
    : m_layout(sprite.layout())
{
    const double border = Sprite::kBorder * scale;
    const PicturePlacement placement{{origin.x - border, origin.y - border}, scale, scale};
    PlaneScaler scaler;
    const auto append = [&](const Plane<const std::uint8_t>& source) {
        const std::size_t begin = m_samples.size();
        const auto width = std::size_t(scaler.columns().size());
        const auto height = std::size_t(scaler.rows().size());
        m_samples.resize(begin + width * height);
        for (std::size_t y = 0; y < height; ++y) {
            scaler.scaleRow(source, scaler.rows().begin + int(y), &m_samples[begin + y * width]);
        }
        return begin;
    };
    for (std::size_t i = 0; i < 3; ++i) {
        const PlaneGrid grid = planeGrid(m_layout, i);
        const bool isNewGrid = i == 0 || grid != planeGrid(m_layout, i - 1);
        if (isNewGrid) {
            const Plane<const std::uint8_t> source = sprite.plane(3);
            const auto [x, y] = planePlacement(placement, kFullGrid, grid);
            scaler.prepare(
                source.width,
                source.height,
                x,
                y,
                reached(x, source.width),
                reached(y, source.height),
                grid == kFullGrid ? ScaleFilter::Sharp : ScaleFilter::Soft);
        }
        Part& part = m_parts[i];
        part.x = scaler.columns().begin;
        part.y = scaler.rows().begin;
        part.width = scaler.columns().size();
        part.height = scaler.rows().size();
        part.color = append(sprite.plane(i));
        part.alpha = isNewGrid ? append(sprite.plane(3)) : m_parts[i - 1].alpha;
    }
}

void PlacedSprite::draw(const PictureView& picture, double opacity) const
{
    assert(m_samples.empty() || picture.layout == m_layout);
    const std::uint8_t faded = opacityByte(opacity);
    if (m_samples.empty() || faded == 0) {
        return;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        const Part& part = m_parts[i];
        const Plane<std::uint8_t>& plane = picture.planes[i];
        const int left = std::max(part.x, 0);
        const int right = std::min(part.x + part.width, plane.width);
        const int top = std::max(part.y, 0);
        const int bottom = std::min(part.y + part.height, plane.height);
        for (int y = top; y < bottom && left < right; ++y) {
            const auto offset =
                std::size_t(y - part.y) * std::size_t(part.width) + std::size_t(left - part.x);
            blendPremultiplied(
                plane.row(y) + left,
                &m_samples[part.color + offset],
                &m_samples[part.alpha + offset],
                faded,
                std::size_t(right - left));
        }
    }
}

void drawSprite(
    const PictureView& picture, const Sprite& sprite, Vec2 origin, double scale, double opacity)
{
    PlacedSprite(sprite, origin, scale).draw(picture, opacity);
}

} // namespace zento
