#pragma once

#include "ZentoCore/StyleSpec.h"
#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Scale.h"
#include "ZentoImaging/Shadow.h"
#include "ZentoImaging/Shapes.h"
#include "ZentoMedia/VideoFrame.h"
#include "ZentoRender/Motion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zento {

/// Draws the recording as a rounded card with its shadow over a background.
///
/// Row by row and plane by plane, so that what is read and written stays in the cache. What the
/// opaque card hides is not drawn. The source goes from its decoded planes straight into those of
/// the canvas, at full sub-pixel precision in luma and chroma. Only a source that is blurred by the
/// camera's motion is scaled into memory of its own first.
///
/// Threading: one thread at a time.
class CardPainter {
public:
    /// The background has the size and the layout of the canvas.
    CardPainter(Picture background, const StyleSpec& style);

    const Picture& background() const { return m_background; }

    /// Draws every sample of the canvas. `card` is where the whole of `source` goes, in pixels. A
    /// picture has the layout of the canvas.
    void paint(
        const VideoFrame& source,
        const Rect& card,
        const CardBlur& blur,
        const PictureView& canvas);
    void paint(const ConstPictureView& source, const Rect& card, const PictureView& canvas);

    /// Draws what lies below a card: the background and the shadow, also where the card would hide
    /// them.
    void paintBelow(const Rect& card, const PictureView& canvas);

private:
    struct PlaneRows;

    template <typename Sample>
    using Planes = std::array<Plane<const Sample>, 3>;

    PlaneRows planeRows(std::size_t plane, const Rect& card, const PictureView& canvas);
    /// `m_scaler` is prepared for these planes.
    template <typename Sample>
    void paintPlanes(
        const Planes<Sample>& source,
        const Rect& card,
        const CardBlur& blur,
        const PictureView& canvas);
    /// The part of a plane the scaler was prepared for, blurred. The source's edges go on beyond
    /// it.
    template <typename Sample>
    Plane<const std::uint8_t> blurred(
        Plane<const Sample> source,
        PlaneScaler& scaler,
        const CardBlur& blur,
        const PlaneGrid& grid);
    /// `cover` is the card's in this row. `scaled`: the source, from sample `firstScaled` on.
    void paintCardRow(
        const PlaneRows& rows,
        int y,
        const CoveredRows& cover,
        const std::uint8_t* scaled,
        int firstScaled);
    void paintMargin(const PlaneRows& rows, int y, SampleRange columns);

    Picture m_background;
    double m_cornerRadius;
    double m_shadowOpacity;
    double m_shadowSigma;
    double m_shadowOffsetY;
    ShadowCache m_shadows;
    PictureScaler m_scaler;
    std::vector<std::uint8_t> m_scaledRow;
    std::vector<std::uint8_t> m_blurred;
    std::vector<std::uint8_t> m_mask;
};

} // namespace zento
