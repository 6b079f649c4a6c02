#pragma once

#include "ZentoImaging/Canvas.h"
#include "ZentoRender/Screenshot/Annotation.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// Burns marks into a picture.
///
/// Places may be anything: a mark with one that is not finite is not drawn, and lengths are limited
/// to a million pixels.
///
/// Threading: free functions.
namespace zento::AnnotationRenderer {

/// The colours that are offered.
inline constexpr std::array<std::string_view, 8> kPalette = {
    "#FF3B30", "#FF9500", "#FFCC00", "#34C759", "#0A84FF", "#BF5AF2", "#FFFFFF", "#000000"};

/// A copy of `base` with the marks on it, cut to `crop` (pixels of `base`, expanded to whole
/// pixels). A crop that leaves nothing of the image is ignored.
///
/// From bottom to top: the blurs, each taken from the picture without marks; one dimming with the
/// spotlights left out of it, where two overlap dimmed again; the other marks in their order.
///
/// `scale`, (0, 1]: pixels of `base` for one of the image that marks and crop are measured in, so
/// that a reduced copy shows what the whole image will.
///
/// Errors: no memory for the copy throws.
Canvas flatten(
    const Canvas& base,
    std::span<const Annotation> annotations,
    const std::optional<Rect>& crop = {},
    double scale = 1);

/// The pixels of an image of that size that a crop keeps: expanded to whole ones, all of them where
/// the crop leaves nothing or there is none.
Rect keptArea(const std::optional<Rect>& crop, Vec2 imageSize);

/// Draws the marks that are strokes, fills and texts; blurs and spotlights belong to `flatten`.
/// `baseLineWidth`: pixels of the canvas.
void draw(std::span<const Annotation> annotations, Canvas& canvas, double baseLineWidth);

/// The luminance of a colour as a `colorHex`, [0, 1].
double luminance(std::string_view colorHex);

/// A PNG file. `scale` is pixels a point, 1 if less, so that it shows as large as on its display.
/// Throws if it cannot be made.
std::vector<std::byte> pngData(const Canvas& image, double scale);

} // namespace zento::AnnotationRenderer
