#pragma once

#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Sprite.h"
#include "ZentoRender/FrameRecipe.h"

#include <optional>

namespace zento {

/// Draws what lies on the card: the ripples of clicks and the pointer.
///
/// Threading: one thread at a time.
class OverlayPainter {
public:
    void paint(const FrameRecipe& recipe, const PictureView& canvas);

private:
    void paintPointer(const FrameRecipe::Pointer& pointer, const PictureView& canvas);

    std::optional<FrameRecipe::Pointer> m_drawnPointer; // what m_pointer holds; alpha is not in it
    PlacedSprite m_pointer;
};

} // namespace zento
