#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Picture.h"
#include "ZentoMedia/VideoFrame.h"
#include "ZentoRender/CanvasPool.h"
#include "ZentoRender/Card.h"
#include "ZentoRender/CardPainter.h"
#include "ZentoRender/FrameRecipe.h"
#include "ZentoRender/OverlayPainter.h"
#include "ZentoRender/TextCardPainter.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace zento {

/// The one place that knows what a frame of the film looks like. The export and the preview both
/// draw through it.
///
/// A frame is worked out as a `FrameRecipe` and then drawn. What the frame before already shows is
/// not drawn again: an equal frame is the same picture, and one whose overlays alone differ begins
/// with a copy. The pixels never depend on that.
///
/// Threading: one thread at a time. The pictures may go anywhere and outlive the compositor.
class FrameCompositor {
public:
    /// Renders the background. The output's sides are even, `sourceSize` is not empty.
    FrameCompositor(const OutputSpec& output, const StyleSpec& style, VideoSize sourceSize);

    Card card(const CameraRig::State& camera) const;

    /// The frame of these layers, 4:2:0. All sources come from one decoder and all webcam pictures
    /// from one, or `forgetLast` is called in between: a picture is told by its identity.
    std::shared_ptr<const Picture> compose(const FrameLayers& layers);

    /// The frame of a title or end card: the background and the card's text alone. `progress` in
    /// [0, 1] is the share of its duration that is over. A frame that looks like the card frame
    /// before it is the same picture.
    std::shared_ptr<const Picture> composeCard(const TextCard& card, double progress);

    /// Draws the next frame from nothing.
    void forgetLast();

private:
    FrameCompositor(
        const OutputSpec& output,
        const StyleSpec& style,
        VideoSize sourceSize,
        const Canvas& background);

    struct Drawn {
        std::uint64_t source = 0;
        FrameRecipe recipe;
        std::shared_ptr<const Picture> picture;
        std::shared_ptr<const Picture> withoutOverlays; // made when it is first of use
    };

    struct DrawnCard {
        TextCard card;
        CardAppearance appearance;
        std::shared_ptr<const Picture> picture;
    };

    OutputSpec m_output;
    StyleSpec m_style;
    Vec2 m_sourceSize;
    CardPainter m_cardPainter;
    OverlayPainter m_overlayPainter;
    TextCardPainter m_textCardPainter;
    CanvasPool m_pool;
    std::optional<Drawn> m_last;
    std::optional<DrawnCard> m_lastCard;
};

} // namespace zento
