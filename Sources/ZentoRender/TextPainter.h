#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Sprite.h"
#include "ZentoRender/DrawingCache.h"
#include "ZentoRender/TextOverlay.h"

#include <vector>

namespace zento {

/// Draws the texts over the film. A text is typeset when it is first seen and blended from then on.
///
/// Threading: one thread at a time.
class TextPainter {
public:
    explicit TextPainter(const OutputSpec& output)
        : m_output(output)
    {
    }

    void paint(const std::vector<TextOverlay>& texts, const PictureView& canvas);

private:
    using Cache = DrawingCache<PlacedSprite>;
    Cache& cacheOf(TextOverlay::Kind kind);

    // A film says far more than it names: the plan alone bounds the keys and chapters it has.
    static constexpr std::size_t kMostCaptions = 201;

    OutputSpec m_output;
    Cache m_keystrokes;
    Cache m_captions{kMostCaptions};
    Cache m_raisedCaptions{kMostCaptions};
    Cache m_chapters;
};

} // namespace zento
