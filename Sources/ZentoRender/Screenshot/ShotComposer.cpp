#include "ZentoRender/Screenshot/ShotComposer.h"

#include "ZentoCore/Error.h"
#include "ZentoImaging/Convert.h"
#include "ZentoRender/BackgroundRenderer.h"
#include "ZentoRender/CardPainter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zento {
namespace {

/// The whole part of a length, limited to what an int holds; 0 if it is not finite.
int wholePart(double length)
{
    constexpr double kMost = std::numeric_limits<int>::max();
    return std::isfinite(length) ? static_cast<int>(std::clamp(length, 0.0, kMost)) : 0;
}

StyleSpec cardStyle(const ShotStyle& style, double scale)
{
    return {
        .background = style.background,
        .cornerRadius = style.cornerRadius * scale,
        .shadowOpacity = style.shadowOpacity,
        .shadowRadius = 60 * scale,
        .shadowOffsetY = 24 * scale};
}

bool isOpaque(const Canvas& image)
{
    const Plane<const std::uint32_t> pixels = image.pixels();
    for (int y = 0; y < pixels.height; ++y) {
        const std::uint32_t* row = pixels.row(y);
        if (std::any_of(row, row + pixels.width, [](std::uint32_t p) { return p >> 24 != 255; }))
            return false;
    }
    return true;
}

/// Puts what the card will lie on below a shot's transparent pixels, in place.
void blendOver(
    const Canvas& image, const ConstPictureView& below, const PictureView& shot, int left, int top)
{
    const Plane<const std::uint32_t> pixels = image.pixels();
    for (int y = 0; y < pixels.height; ++y) {
        for (int x = 0; x < pixels.width; ++x) {
            const std::uint32_t through = 255 - (pixels.row(y)[x] >> 24);
            for (std::size_t p = 0; through != 0 && p < below.planes.size(); ++p) {
                std::uint8_t& sample = shot.planes[p].row(y)[x]; // premultiplied
                const std::uint32_t seen = below.planes[p].row(y + top)[x + left];
                sample = static_cast<std::uint8_t>(
                    std::min(255U, sample + (seen * through + 127) / 255));
            }
        }
    }
}

} // namespace

struct ShotFrame::Parts {
    Rect card; // whole pixels
    Picture canvas;
    CardPainter painter;
};

ShotFrame::ShotFrame(const ShotStyle& style, int imageWidth, int imageHeight, double scale)
{
    if (style.bare)
        return;
    const double margin = ShotComposer::border(style, imageHeight / scale) * scale;
    const int width = wholePart(imageWidth + 2 * margin);
    const int height = wholePart(imageHeight + 2 * margin);
    const int left = (width - imageWidth) / 2;
    const int top = (height - imageHeight) / 2;
    m_parts = std::make_unique<Parts>(
        Rect{
            static_cast<double>(left),
            static_cast<double>(top),
            static_cast<double>(imageWidth),
            static_cast<double>(imageHeight)},
        Picture(width, height, Layout::Rgb),
        CardPainter(
            toPicture(BackgroundRenderer::render(style.background, width, height), Layout::Rgb),
            cardStyle(style, scale)));
}

ShotFrame::~ShotFrame() = default;
ShotFrame::ShotFrame(ShotFrame&&) noexcept = default;
ShotFrame& ShotFrame::operator=(ShotFrame&&) noexcept = default;

Canvas ShotFrame::around(const Canvas& image)
{
    if (!m_parts)
        return image.clone();
    const Rect& card = m_parts->card;
    const PictureView canvas = m_parts->canvas.view();
    Picture shot = toPicture(image, Layout::Rgb);
    if (!isOpaque(image)) {
        m_parts->painter.paintBelow(card, canvas);
        blendOver(image, canvas, shot.view(), static_cast<int>(card.x), static_cast<int>(card.y));
    }
    m_parts->painter.paint(shot.view(), card, canvas);
    return toCanvas(canvas);
}

namespace ShotComposer {

double border(const ShotStyle& style, double sourceHeight)
{
    return style.bare ? 0 : std::max(sourceHeight * style.padding * 1.6, 40.0);
}

bool fits(const ShotStyle& style, double width, double height)
{
    const double margin = border(style, height);
    return std::max(width, height) + 2 * margin < Canvas::kMostSide + 1;
}

Canvas beautify(const Canvas& image, const ShotStyle& style)
{
    if (style.bare)
        return image.clone();
    try {
        return ShotFrame(style, image.width(), image.height()).around(image);
    } catch (const Error&) {
        return image.clone();
    }
}

} // namespace ShotComposer
} // namespace zento
