#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Sprite.h"
#include "ZentoRender/DrawingCache.h"
#include "ZentoRender/TextCardLayout.h"

#include <optional>
#include <string>

namespace zento {

/// How a text card is seen at a moment: it settles while it fades in, rests and fades out.
struct CardAppearance {
    double alpha = 1; // [0, 1]
    double scale = 1; // [1, 1.03]
    bool operator==(const CardAppearance&) const = default;
};

/// `duration` in seconds; `progress` in [0, 1] is the share of it that is over. A card too short
/// for both fades never shows fully.
CardAppearance cardAppearance(double duration, double progress);

/// Draws title and end cards, on what the canvas already shows. A card is typeset when it is first
/// seen; a fade costs a blend, and only the settling one more scaling a frame.
///
/// Threading: one thread at a time.
class TextCardPainter {
public:
    TextCardPainter(const OutputSpec& output, Ground ground)
        : m_output(output)
        , m_ground(ground)
    {
    }

    void paint(const TextCard& card, const CardAppearance& appearance, const PictureView& canvas);

private:
    struct Drawn {
        Sprite sprite;
        Vec2 origin;       // in the frame, at scale 1
        Vec2 restingPoint; // the same
    };
    struct Placed {
        std::string key;
        double scale = 1;
        PlacedSprite sprite;
    };

    std::optional<Drawn> drawn(const TextCard& card, Layout layout) const;

    static constexpr std::size_t kMostCards = 9;

    OutputSpec m_output;
    Ground m_ground;
    DrawingCache<std::optional<Drawn>> m_cards{kMostCards};
    Placed m_placed; // as last painted
};

} // namespace zento
