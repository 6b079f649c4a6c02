#pragma once

#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Sprite.h"
#include "ZentoRender/FrameRecipe.h"
#include "ZentoRender/TextPainter.h"

#include <optional>

namespace zento {

/// Draws what lies on the card: the ripples of clicks, the pointer and the texts.
///
/// Threading: one thread at a time.
class OverlayPainter {
public:
    explicit OverlayPainter(const OutputSpec& output)
        : m_texts(output)
    {
    }

    void paint(const FrameRecipe& recipe, const PictureView& canvas);

private:
    void paintPointer(const FrameRecipe::Pointer& pointer, const PictureView& canvas);

    std::optional<FrameRecipe::Pointer> m_drawnPointer; // what m_pointer holds; alpha is not in it
    PlacedSprite m_pointer;
    TextPainter m_texts;
};

} // namespace zento
