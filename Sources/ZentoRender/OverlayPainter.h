#pragma once

#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Sprite.h"
#include "ZentoRender/FrameRecipe.h"
#include "ZentoRender/TextPainter.h"
#include "ZentoRender/WebcamPainter.h"

#include <optional>

namespace zento {

/// Draws what lies on the card: the ripples of clicks, the pointer, the webcam and the texts.
///
/// Threading: one thread at a time.
class OverlayPainter {
public:
    explicit OverlayPainter(const OutputSpec& output)
        : m_texts(output)
    {
    }

    /// `webcam` is what the recipe's bubble was worked out for.
    void paint(
        const FrameRecipe& recipe,
        const std::optional<WebcamLayer>& webcam,
        const PictureView& canvas);

    /// Draws the next webcam picture from nothing.
    void forgetLast() { m_webcam.forgetLast(); }

private:
    void paintPointer(const FrameRecipe::Pointer& pointer, const PictureView& canvas);

    std::optional<FrameRecipe::Pointer> m_drawnPointer; // what m_pointer holds; alpha is not in it
    PlacedSprite m_pointer;
    WebcamPainter m_webcam;
    TextPainter m_texts;
};

} // namespace zento
