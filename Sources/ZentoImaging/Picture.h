#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/PictureMemory.h"
#include "ZentoCore/Plane.h"
#include "ZentoImaging/Color.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace zento {

/// Where the samples of a plane lie in its picture: a place p of the picture, in pixels with the
/// first pixel's centre at (0.5, 0.5), is the place p * perPixel + offset of the plane, in samples
/// with the first sample's centre at (0.5, 0.5).
struct PlaneGrid {
    Vec2 perPixel{1, 1};
    Vec2 offset{0, 0};

    Vec2 toPlane(Vec2 p) const
    {
        return {p.x * perPixel.x + offset.x, p.y * perPixel.y + offset.y};
    }
    Rect toPlane(const Rect& r) const
    {
        return {
            r.x * perPixel.x + offset.x,
            r.y * perPixel.y + offset.y,
            r.w * perPixel.x,
            r.h * perPixel.y};
    }
    bool operator==(const PlaneGrid&) const = default;
};

inline constexpr PlaneGrid kFullGrid{};
/// Chroma sited left: a sample lies on the column of an even pixel, so the plane begins a quarter
/// of a sample before the picture does.
inline constexpr PlaneGrid kChroma420Grid{{0.5, 0.5}, {0.25, 0}};
inline constexpr PlaneGrid kChroma422Grid{{0.5, 1}, {0.25, 0}};

/// The grid of plane 0, 1 or 2.
constexpr PlaneGrid planeGrid(Layout layout, std::size_t plane)
{
    return layout == Layout::Yuv420 && plane > 0 ? kChroma420Grid : kFullGrid;
}

/// The grid of a picture's chroma planes, told by their height.
template <typename Sample>
PlaneGrid chromaGrid(const YuvPlanes<Sample>& planes)
{
    return planes.cb.height < planes.y.height ? kChroma420Grid : kChroma422Grid;
}

/// The three planes of a picture somebody else owns. Chroma planes of an odd size are rounded up.
template <typename Sample>
struct BasicPictureView {
    Layout layout = Layout::Yuv420;
    int width = 0; // pixels
    int height = 0;
    std::array<Plane<Sample>, 3> planes;

    PlaneGrid grid(std::size_t plane) const { return planeGrid(layout, plane); }

    operator BasicPictureView<const Sample>() const // NOLINT(google-explicit-constructor): a view
        requires(!std::is_const_v<Sample>)
    {
        return {layout, width, height, {planes[0], planes[1], planes[2]}};
    }
};
using PictureView = BasicPictureView<std::uint8_t>;
using ConstPictureView = BasicPictureView<const std::uint8_t>;

/// A 4:2:0 picture as a view, to draw into.
PictureView pictureView(const YuvPlanes<std::uint8_t>& planes);
ConstPictureView pictureView(const YuvPlanes<const std::uint8_t>& planes);

/// A picture of 8-bit planes and their memory. Rows begin on 64-byte boundaries.
///
/// Threading: a value; readers may share one that nobody writes.
class Picture {
public:
    Picture() = default;                           // empty, 0 x 0
    Picture(int width, int height, Layout layout); // black
    Picture(Picture&& other) noexcept = default;
    Picture& operator=(Picture&& other) noexcept = default;
    Picture clone() const;

    int width() const { return m_view.width; }
    int height() const { return m_view.height; }
    Layout layout() const { return m_view.layout; }
    bool isEmpty() const { return m_view.width == 0; }

    PictureView view() { return m_view; }
    ConstPictureView view() const { return m_view; }
    Plane<std::uint8_t> plane(std::size_t index) { return m_view.planes[index]; }
    Plane<const std::uint8_t> plane(std::size_t index) const { return m_view.planes[index]; }

    /// The planes as Y', Cb, Cr. Only for `Layout::Yuv420`.
    YuvPlanes<std::uint8_t> yuv();
    YuvPlanes<const std::uint8_t> yuv() const;

private:
    PictureMemory m_memory;
    PictureView m_view;
};

/// Fills the whole picture; `alpha` is not looked at.
void fill(const PictureView& picture, const Color& color);

/// Has a row fetched into the cache that will soon be drawn: a film's pictures are too large to
/// stay there, and a store that waits for memory holds up what follows. Nothing for a row outside.
void prefetchRow(const Plane<std::uint8_t>& plane, int y);

/// Copies a picture of the same layout and size.
void copy(const ConstPictureView& source, const PictureView& destination);

} // namespace zento
