#pragma once

#include "ZentoImaging/Shapes.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace zento {

/// A rounded rectangle blurred by a Gaussian, as coverage: row by row, at any sub-pixel place and
/// of any size, so that a moving card's shadow glides.
///
/// A blurred rectangle is the product of two error functions. What its rounded corners lack is a
/// small field that depends on radius and sigma alone: it is integrated once, kept as a patch and
/// subtracted at the four corners. Accurate to half a level of 255.
///
/// Threading: one thread at a time.
class Shadow {
public:
    /// In samples of the plane it is used for. A sigma below 0.5 counts as 0.5.
    Shadow(double radius, double sigma);
    ~Shadow();
    Shadow(Shadow&&) noexcept;
    Shadow& operator=(Shadow&&) noexcept;

    double radius() const;
    double sigma() const;

    /// Prepares the rows of one place: `rect` in the plane's samples, of the radius given above;
    /// columns [0, width) are prepared. Cheap enough for every frame.
    void place(const Rect& rect, int width);

    /// Writes the coverage of the columns, times `opacity` in [0, 1], to mask[0] and on.
    void maskRow(int y, SampleRange columns, double opacity, std::uint8_t* mask);

    /// The rows and columns it is seen in, within [0, limit): outside, every mask is 0.
    SampleRange rows(int limit) const;
    SampleRange columns(int limit) const;

private:
    struct Field;
    std::unique_ptr<Field> m_field;
};

/// The shadows of a picture's planes, kept while radius and sigma stay.
///
/// Threading: one thread at a time.
class ShadowCache {
public:
    ShadowCache();
    ~ShadowCache();
    ShadowCache(ShadowCache&&) noexcept;
    ShadowCache& operator=(ShadowCache&&) noexcept;

    /// The shadow of a shape given in pixels, placed for a plane of `width` samples. Valid until
    /// the next call for the same radius, sigma and grid.
    Shadow& placed(const RoundedRect& shape, double sigma, const PlaneGrid& grid, int width);

private:
    std::vector<Shadow> m_shadows;
};

/// Draws the blurred shape in `color` at its alpha. `sigma` in pixels.
void drawShadow(
    const PictureView& picture,
    const RoundedRect& shape,
    double sigma,
    const Color& color,
    ShadowCache& cache);

} // namespace zento
