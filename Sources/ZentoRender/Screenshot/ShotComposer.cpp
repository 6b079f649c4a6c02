#include "ZentoRender/Screenshot/ShotComposer.h"

#include "ZentoCore/Error.h"
#include "ZentoImaging/Convert.h"
#include "ZentoRender/BackgroundRenderer.h"
#include "ZentoRender/CardPainter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zento::ShotComposer {
namespace {

/// The whole part of a length, limited to what an int holds; 0 if it is not finite.
int wholePart(double length)
{
    constexpr double kMost = std::numeric_limits<int>::max();
    return std::isfinite(length) ? static_cast<int>(std::clamp(length, 0.0, kMost)) : 0;
}

StyleSpec cardStyle(const ShotStyle& style)
{
    return {
        .background = style.background,
        .cornerRadius = style.cornerRadius,
        .shadowOpacity = style.shadowOpacity,
        .shadowRadius = 60,
        .shadowOffsetY = 24};
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

Canvas framed(const Canvas& image, const ShotStyle& style)
{
    const double margin = border(style, image.height());
    const int width = wholePart(image.width() + 2 * margin);
    const int height = wholePart(image.height() + 2 * margin);
    const int left = (width - image.width()) / 2;
    const int top = (height - image.height()) / 2;
    const Rect card = {
        static_cast<double>(left), static_cast<double>(top), image.bounds().w, image.bounds().h};

    Picture shot = toPicture(image, Layout::Rgb);
    CardPainter painter(
        toPicture(BackgroundRenderer::render(style.background, width, height), Layout::Rgb),
        cardStyle(style));
    Picture canvas(width, height, Layout::Rgb);
    if (!isOpaque(image)) {
        painter.paintBelow(card, canvas.view());
        blendOver(image, canvas.view(), shot.view(), left, top);
    }
    painter.paint(shot.view(), card, canvas.view());
    return toCanvas(canvas.view());
}

} // namespace

double border(const ShotStyle& style, double sourceHeight)
{
    return style.bare ? 0 : std::max(sourceHeight * style.padding * 1.6, 40.0);
}

Canvas beautify(const Canvas& image, const ShotStyle& style)
{
    if (style.bare)
        return image.clone();
    try {
        return framed(image, style);
    } catch (const Error&) {
        return image.clone();
    }
}

} // namespace zento::ShotComposer
