#pragma once

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Picture.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zento {

/// An overlay made ready to blend: a canvas turned once into premultiplied planes and alpha, each
/// at full size, from which any scale and sub-pixel place is taken. What lies outside is
/// transparent.
///
/// Threading: immutable; readers may share it.
class Sprite {
public:
    Sprite(const Canvas& canvas, Layout layout);

    int width() const { return m_width; } // pixels
    int height() const { return m_height; }
    Layout layout() const { return m_layout; }

    /// Plane 0, 1, 2 and 3 for alpha, all of the canvas's size plus `kBorder` on every side.
    Plane<const std::uint8_t> plane(std::size_t index) const;
    static constexpr int kBorder = 2; // transparent samples, so that edges fade out when scaled

private:
    Layout m_layout = Layout::Yuv420;
    int m_width = 0;
    int m_height = 0;
    Picture m_colors; // of Layout::Rgb's geometry: three planes of full size
    Picture m_alpha;  // the first plane alone is used
};

/// A sprite brought to one scale and sub-pixel place, ready to blend many times: keep it while
/// neither changes.
class PlacedSprite {
public:
    PlacedSprite() = default; // draws nothing

    /// The sprite's top-left corner lies at `origin` (pixels of the canvas), its size is multiplied
    /// by `scale`, magnitude limited to [0.02, 16]. At scale 1 and a whole place the luma is the
    /// sprite's own.
    PlacedSprite(const Sprite& sprite, Vec2 origin, double scale = 1);

    /// Blends it over the picture, which has the sprite's layout; parts outside are left out.
    void draw(const PictureView& picture, double opacity = 1) const;

private:
    struct Part {
        int x = 0; // of the first sample in the picture's plane
        int y = 0;
        int width = 0;
        int height = 0;
        std::size_t color = 0; // where its samples begin in m_samples, then width * height of alpha
        std::size_t alpha = 0;
    };

    Layout m_layout = Layout::Yuv420;
    std::array<Part, 3> m_parts;
    std::vector<std::uint8_t> m_samples;
};

/// Places and draws in one go, for what moves every frame.
void drawSprite(
    const PictureView& picture, const Sprite& sprite, Vec2 origin, double scale, double opacity);

} // namespace zento
