#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Scale.h"

#include <cstdint>
#include <vector>

namespace zento {

/// A rectangle with circular corners; the radius is limited to half the shorter side.
struct RoundedRect {
    Rect rect;
    double radius = 0;

    /// Grown on all sides, corners staying concentric; negative shrinks.
    RoundedRect grownBy(double length) const
    {
        return {
            {rect.x - length, rect.y - length, rect.w + 2 * length, rect.h + 2 * length},
            radius + length};
    }
    /// The shape as a plane of that grid sees it. The grid halves both axes or none.
    RoundedRect inPlane(const PlaneGrid& grid) const
    {
        return {grid.toPlane(rect), radius * grid.perPixel.x};
    }
    bool operator==(const RoundedRect&) const = default;
};

/// How much of each sample of a row a shape covers, 255 being all: exact along straight edges,
/// along the corners by the distance of the sample's centre (within 0.03 of the area from a radius
/// of 2 up). The shape is in the plane's own samples.
///
/// Writes [columns.begin, columns.end) to `mask`, beginning at mask[0].
void coverageRow(const RoundedRect& shape, int y, SampleRange columns, std::uint8_t* mask);

/// The samples of a row that the shape covers wholly; empty (begin == end) if there are none.
/// Within [0, width).
SampleRange opaqueColumns(const RoundedRect& shape, int y, int width);

/// The samples of a row that the shape touches at all. Within [0, width).
SampleRange touchedColumns(const RoundedRect& shape, int y, int width);

/// What a shape covers of the rows of a plane, taken one after the other: along the straight sides
/// every row is like the one before, and is not worked out again.
class CoveredRows {
public:
    CoveredRows(const RoundedRect& shape, int width);

    void moveTo(int y);

    SampleRange touched() const { return m_touched; }
    SampleRange opaque() const
    {
        return m_opaque;
    } // empty at the end of the touched if there are none
    /// The coverage of every sample of the row, of [touched().begin, touched().end) only.
    const std::uint8_t* mask() const { return m_mask.data(); }

private:
    RoundedRect m_shape;
    SampleRange m_alike; // rows
    int m_y = -1;
    SampleRange m_touched;
    SampleRange m_opaque;
    std::vector<std::uint8_t> m_mask;
};

/// Fills a shape with `color` at its alpha.
void fillRoundedRect(const PictureView& picture, const RoundedRect& shape, const Color& color);

/// Fills what lies between a shape and the shape grown by `width` on all sides.
void fillRing(
    const PictureView& picture, const RoundedRect& inner, double width, const Color& color);

/// Puts `above`, a picture of the same layout whose first pixel lies at (x, y), through a shape
/// given in the pixels of `picture`. For Y'CbCr x and y are even.
void blendThroughShape(
    const PictureView& picture,
    const ConstPictureView& above,
    int x,
    int y,
    const RoundedRect& shape);

} // namespace zento
