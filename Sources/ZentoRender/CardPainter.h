#pragma once

#include "ZentoCore/StyleSpec.h"
#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Scale.h"
#include "ZentoImaging/Shadow.h"
#include "ZentoImaging/Shapes.h"
#include "ZentoMedia/VideoFrame.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zento {

/// Draws the recording as a rounded card with its shadow over a background.
///
/// Row by row and plane by plane, so that what is read and written stays in the cache. What the
/// opaque card hides is not drawn. The source goes from its decoded planes straight into those of
/// the canvas, at full sub-pixel precision in luma and chroma.
///
/// Threading: one thread at a time.
class CardPainter {
public:
    /// The background has the size and the layout of the canvas.
    CardPainter(Picture background, const StyleSpec& style);

    /// Draws every sample of the canvas. `card` is where the whole of `source` goes, in pixels. A
    /// picture has the layout of the canvas.
    void paint(const VideoFrame& source, const Rect& card, const PictureView& canvas);
    void paint(const ConstPictureView& source, const Rect& card, const PictureView& canvas);

    /// Draws what lies below a card: the background and the shadow, also where the card would hide
    /// them.
    void paintBelow(const Rect& card, const PictureView& canvas);

private:
    struct PlaneRows;

    template <typename Sample>
    using Planes = std::array<Plane<const Sample>, 3>;

    /// `m_scaler` is prepared for these planes.
    template <typename Sample>
    void paintPlanes(const Planes<Sample>& source, const Rect& card, const PictureView& canvas);
    PlaneRows planeRows(std::size_t plane, const Rect& card, const PictureView& canvas);
    /// `touched`: the samples the card touches. `firstScaled`: the sample m_scaledRow begins with.
    void paintCardRow(const PlaneRows& rows, int y, SampleRange touched, int firstScaled);
    void paintMargin(const PlaneRows& rows, int y, SampleRange columns);

    Picture m_background;
    double m_cornerRadius;
    double m_shadowOpacity;
    double m_shadowSigma;
    double m_shadowOffsetY;
    ShadowCache m_shadows;
    PictureScaler m_scaler;
    std::vector<std::uint8_t> m_scaledRow;
    std::vector<std::uint8_t> m_mask;
};

} // namespace zento
