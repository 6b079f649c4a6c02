#pragma once

#include "ZentoCore/StyleSpec.h"
#include "ZentoImaging/Canvas.h"

#include <memory>

namespace zento {

/// How a screenshot is framed.
struct ShotStyle {
    StyleSpec::Background background = Background::LinearGradient{"#20242E", "#0B0D12"};
    double padding = 0.06;       // of the margin: see `ShotComposer::border`
    double cornerRadius = 24;    // pixels
    double shadowOpacity = 0.45; // [0, 1]
    bool bare = false;           // not framed at all

    bool operator==(const ShotStyle&) const = default;
};

/// Places a screenshot as a rounded card on a background, drawn as a frame of a film is, but in
/// R'G'B' of full resolution.
///
/// Threading: free functions.
namespace ShotComposer {

/// The margin in pixels: `padding` times 1.6 of the source's height, 40 at least; 0 if bare.
double border(const ShotStyle& style, double sourceHeight);

/// Whether an image of that size and its margin are not larger than a canvas may be.
bool fits(const ShotStyle& style, double width, double height);

/// The picture with its margin, its size the whole part of the image's and twice the margin's.
///
/// The shot keeps its pixels: it is drawn at a scale of exactly 1 on whole pixels. The margin left
/// by the whole part would ask for a scale that is smaller by up to a pixel over the longer side;
/// nobody sees that of the margin, but everybody of a text that is not crisp. A left or top margin
/// of half a pixel is rounded down.
///
/// Transparent pixels, as the corners of a window have them, show the background with the card's
/// shadow.
///
/// A picture that cannot be made, for example because it is larger than a canvas may be, gives a
/// copy of the image.
Canvas beautify(const Canvas& image, const ShotStyle& style);

} // namespace ShotComposer

/// What stands around a shot of one size in one style, kept for one picture after the other: the
/// screen's view of a shot that is being drawn on.
///
/// Threading: one thread at a time. Errors: no memory for a canvas throws.
class ShotFrame {
public:
    /// The image's size in pixels. `scale`, (0, 1]: of those for one of the shot that the style's
    /// lengths are measured in, as in `AnnotationRenderer::flatten`.
    ShotFrame(const ShotStyle& style, int imageWidth, int imageHeight, double scale = 1);
    ~ShotFrame();
    ShotFrame(ShotFrame&&) noexcept;
    ShotFrame& operator=(ShotFrame&&) noexcept;

    /// `ShotComposer::beautify` of an image of that size.
    Canvas around(const Canvas& image);

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts; // absent if bare
};

} // namespace zento
