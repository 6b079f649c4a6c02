#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/Plane.h"
#include "ZentoImaging/Font.h"
#include "ZentoImaging/Paint.h"
#include "ZentoImaging/Path.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace zento {

/// How a scaled image is read.
enum class Interpolation {
    Nearest, // hard pixels
    High,    // smooth, averaging where the image is made smaller
};

/// A drawing surface for shapes and text: premultiplied 8-bit sRGB with alpha, origin at the top
/// left, y down. It begins transparent. For what is drawn once and kept; frames are put together
/// from planes.
///
/// Threading: one thread at a time; distinct canvases are independent.
/// Errors: a size that is not positive, or no memory for it, throws.
class Canvas {
public:
    static constexpr int kMostSide = 32767; // pixels, of what draws
    Canvas(int width, int height);          // pixels
    Canvas(Canvas&&) noexcept;
    Canvas& operator=(Canvas&&) noexcept;
    ~Canvas();
    Canvas clone() const; // the pixels; transformation and clip start anew

    int width() const { return m_width; }
    int height() const { return m_height; }
    Rect bounds() const { return {0, 0, double(m_width), double(m_height)}; }

    /// 0xAARRGGBB, premultiplied: in memory B, G, R, A on a little-endian machine. Valid until the
    /// next drawing.
    Plane<const std::uint32_t> pixels() const;
    /// The same, to write. Drawing sees what was written when this is called anew before it.
    Plane<std::uint32_t> pixels();

    // Transformation and clip: `save` remembers them, `restore` brings the last ones back.
    void save();
    void restore();
    void translate(Vec2 offset);
    void scale(double x, double y);
    void clip(const Path& path, FillRule rule = FillRule::Winding);

    void fillAll(const Paint& paint, BlendMode mode = BlendMode::Over); // the whole clip
    void fill(
        const Path& path,
        const Paint& paint,
        FillRule rule = FillRule::Winding,
        BlendMode mode = BlendMode::Over);
    void stroke(
        const Path& path,
        const Stroke& stroke,
        const Paint& paint,
        BlendMode mode = BlendMode::Over);

    /// Draws the whole image into `destination`.
    void drawImage(
        const Canvas& image,
        const Rect& destination,
        Interpolation interpolation = Interpolation::High,
        double alpha = 1);

    /// Draws one line of text beginning at `origin` on its baseline. Line breaks and control
    /// characters count as spaces.
    void drawText(std::string_view text, const Font& font, Vec2 origin, const Paint& paint);
    void strokeText(
        std::string_view text,
        const Font& font,
        Vec2 origin,
        const Stroke& stroke,
        const Paint& paint);

    /// Blurs colour and alpha alike; outside the canvas counts as transparent.
    void blur(double sigma); // pixels, [0, ∞)

private:
    struct State;
    std::unique_ptr<State> m_state;
    int m_width = 0;
    int m_height = 0;
};

/// Saves a canvas's transformation and clip for a scope.
class CanvasScope {
public:
    explicit CanvasScope(Canvas& canvas)
        : m_canvas(canvas)
    {
        m_canvas.save();
    }
    ~CanvasScope() { m_canvas.restore(); }
    CanvasScope(const CanvasScope&) = delete;
    CanvasScope& operator=(const CanvasScope&) = delete;

private:
    Canvas& m_canvas;
};

} // namespace zento
