#pragma once

#include "SyntheticSource.h"
#include "ZentoCore/StyleSpec.h"
#include "ZentoRender/Card.h"

#include <vector>

namespace zento {

/// What a frame without overlays should look like, worked out point by point in R'G'B' and double
/// precision from the geometry alone, with nothing of the compositor's arithmetic.
class ReferenceFrame {
public:
    ReferenceFrame(
        VideoSize canvas,
        const Card& card,
        const StyleSpec& style,
        Painting background,
        Painting source);

    /// The mean over a rectangle of the canvas, as Y', Cb, Cr of 8 bits, not rounded.
    std::array<double, 3> mean(const Rect& area) const;

private:
    bool isOnCard(Vec2 p) const;
    bool isCrossed(const Rect& area) const; // by the card's edge
    double shadowAt(Vec2 p) const;          // coverage, [0, 1]
    RgbValue colorAt(Vec2 p) const;

    VideoSize m_canvas;
    Card m_card;
    StyleSpec m_style;
    Painting m_background;
    Painting m_source;
    std::vector<double> m_shadow; // at the centres of the pixels
};

} // namespace zento
