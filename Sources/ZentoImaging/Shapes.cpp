#include "ZentoImaging/Shapes.h"

#include "ZentoImaging/Blend.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <vector>

namespace zento {

namespace {

/// A shape with its edges named and its radius limited.
struct Edges {
    double left;
    double top;
    double right;
    double bottom;
    double radius;
};

Edges edgesOf(const RoundedRect& shape)
{
    const Rect& r = shape.rect;
    const double most = 0.5 * std::min(r.w, r.h);
    return {r.x, r.y, r.x + r.w, r.y + r.h, std::clamp(shape.radius, 0.0, std::max(0.0, most))};
}

/// How much of sample [i, i + 1) lies between two edges.
double overlap(int i, double from, double to)
{
    return std::max(0.0, std::min(i + 1.0, to) - std::max(double(i), from));
}

/// How far a centre lies beyond where the edge's straight part ends, towards the corner.
double intoCorner(int i, double from, double to, double radius)
{
    const double center = i + 0.5;
    return std::max({from + radius - center, center - (to - radius), 0.0});
}

constexpr double kLeastRadius = 1; // below, a corner is less than the sample it lies in

std::uint8_t coverage(const Edges& e, double coveredY, double cornerY, int x)
{
    const double cornerX = intoCorner(x, e.left, e.right, e.radius);
    double covered = overlap(x, e.left, e.right) * coveredY;
    if (cornerX > 0 && cornerY > 0 && e.radius >= kLeastRadius) {
        const double distance = std::sqrt(cornerX * cornerX + cornerY * cornerY);
        covered = std::clamp(e.radius - distance + 0.5, 0.0, 1.0);
    }
    return opacityByte(covered);
}

SampleRange limited(double from, double to, SampleRange within)
{
    const int begin = int(std::clamp(from, double(within.begin), double(within.end)));
    return {begin, int(std::clamp(to, double(begin), double(within.end)))};
}

SampleRange opaqueWithin(const Edges& e, int y, SampleRange within)
{
    const SampleRange none{within.begin, within.begin};
    if (y < e.top || y + 1 > e.bottom) {
        return none;
    }
    double reach = e.radius - 0.5; // beyond the straight part and still wholly covered
    if (const double cornerY = intoCorner(y, e.top, e.bottom, e.radius);
        cornerY > 0 && e.radius >= kLeastRadius) {
        if (cornerY >= reach) {
            return none;
        }
        reach = std::sqrt(reach * reach - cornerY * cornerY);
    }
    return limited(
        std::ceil(e.left + e.radius - reach - 0.5),
        std::floor(e.right - e.radius + reach + 0.5),
        within);
}

SampleRange touchedWithin(const Edges& e, int y, SampleRange within)
{
    if (overlap(y, e.top, e.bottom) <= 0) {
        return {within.begin, within.begin};
    }
    double reach = e.radius; // beyond the straight part
    if (const double cornerY = intoCorner(y, e.top, e.bottom, e.radius);
        cornerY > 0 && e.radius >= kLeastRadius) {
        // A centre is covered up to half a sample outside; one sample more leaves rounding no room.
        const double most = e.radius + 0.5;
        reach = std::sqrt(std::max(0.0, most * most - cornerY * cornerY)) + 1;
    }
    return limited(
        std::floor(std::max(e.left, e.left + e.radius - reach)),
        std::ceil(std::min(e.right, e.right - e.radius + reach)),
        within);
}

/// Calls visit(plane index, shape in the plane, row, touched columns) for all rows of a shape.
template <typename Visit>
void forEachRow(const PictureView& picture, const RoundedRect& shape, Visit visit)
{
    for (std::size_t i = 0; i < 3; ++i) {
        const Plane<std::uint8_t>& plane = picture.planes[i];
        const RoundedRect own = shape.inPlane(picture.grid(i));
        const SampleRange rows = touchedSamples(own.rect.y, own.rect.y + own.rect.h, plane.height);
        for (int y = rows.begin; y < rows.end; ++y) {
            const SampleRange columns = touchedColumns(own, y, plane.width);
            if (columns.size() > 0) {
                visit(i, own, y, columns);
            }
        }
    }
}

} // namespace

void coverageRow(const RoundedRect& shape, int y, SampleRange columns, std::uint8_t* mask)
{
    const Edges e = edgesOf(shape);
    const double coveredY = overlap(y, e.top, e.bottom);
    const double cornerY = intoCorner(y, e.top, e.bottom, e.radius);
    const SampleRange touched = touchedWithin(e, y, columns);
    const SampleRange opaque = opaqueWithin(e, y, touched);
    std::uint8_t* out = mask - columns.begin;
    std::memset(out + columns.begin, 0, std::size_t(touched.begin - columns.begin));
    for (int x = touched.begin; x < opaque.begin; ++x) {
        out[x] = coverage(e, coveredY, cornerY, x);
    }
    std::memset(out + opaque.begin, 255, std::size_t(opaque.size()));
    for (int x = opaque.end; x < touched.end; ++x) {
        out[x] = coverage(e, coveredY, cornerY, x);
    }
    std::memset(out + touched.end, 0, std::size_t(columns.end - touched.end));
}

SampleRange opaqueColumns(const RoundedRect& shape, int y, int width)
{
    return opaqueWithin(edgesOf(shape), y, {0, width});
}

SampleRange touchedColumns(const RoundedRect& shape, int y, int width)
{
    return touchedWithin(edgesOf(shape), y, {0, width});
}

CoveredRows::CoveredRows(const RoundedRect& shape, int width)
    : m_shape(shape)
    , m_mask(std::size_t(width))
{
    const Edges e = edgesOf(shape);
    m_alike = {int(std::ceil(e.top + e.radius)), int(std::floor(e.bottom - e.radius))};
}

void CoveredRows::moveTo(int y)
{
    const auto isAlike = [&](int row) { return row >= m_alike.begin && row < m_alike.end; };
    const bool isLikeLast = m_y >= 0 && isAlike(y) && isAlike(m_y);
    m_y = y;
    if (isLikeLast) {
        return;
    }
    const int width = int(m_mask.size());
    m_touched = touchedColumns(m_shape, y, width);
    m_opaque = opaqueColumns(m_shape, y, width);
    if (m_opaque.size() <= 0) {
        m_opaque = {m_touched.end, m_touched.end};
    }
    coverageRow(m_shape, y, m_touched, m_mask.data() + m_touched.begin);
}

void fillRoundedRect(const PictureView& picture, const RoundedRect& shape, const Color& color)
{
    const std::array<std::uint8_t, 3> values = planeValues(color, picture.layout);
    const std::uint8_t opacity = opacityByte(color.alpha);
    std::vector<std::uint8_t> mask(std::size_t(picture.width));
    forEachRow(
        picture, shape, [&](std::size_t plane, const RoundedRect& own, int y, SampleRange columns) {
            const auto count = std::size_t(columns.size());
            coverageRow(own, y, columns, mask.data());
            scaleMask(mask.data(), opacity, count);
            std::uint8_t* row = picture.planes[plane].row(y) + columns.begin;
            blendConstant(row, mask.data(), values[plane], count);
        });
}

void fillRing(
    const PictureView& picture, const RoundedRect& inner, double width, const Color& color)
{
    const std::array<std::uint8_t, 3> values = planeValues(color, picture.layout);
    const std::uint8_t opacity = opacityByte(color.alpha);
    std::vector<std::uint8_t> mask(std::size_t(picture.width));
    std::vector<std::uint8_t> hole(std::size_t(picture.width));
    forEachRow(
        picture,
        inner.grownBy(width),
        [&](std::size_t plane, const RoundedRect& outer, int y, SampleRange columns) {
            const auto count = std::size_t(columns.size());
            coverageRow(outer, y, columns, mask.data());
            coverageRow(inner.inPlane(picture.grid(plane)), y, columns, hole.data());
            for (std::size_t x = 0; x < count; ++x) {
                hole[x] = static_cast<std::uint8_t>(255 - hole[x]);
            }
            multiplyMasks(mask.data(), mask.data(), hole.data(), count);
            scaleMask(mask.data(), opacity, count);
            std::uint8_t* row = picture.planes[plane].row(y) + columns.begin;
            blendConstant(row, mask.data(), values[plane], count);
        });
}

void blendThroughShape(
    const PictureView& picture,
    const ConstPictureView& above,
    int x,
    int y,
    const RoundedRect& shape)
{
    assert(picture.layout == above.layout);
    assert(picture.layout == Layout::Rgb || (x % 2 == 0 && y % 2 == 0));
    std::vector<std::uint8_t> mask(std::size_t(picture.width));
    forEachRow(
        picture,
        shape,
        [&](std::size_t plane, const RoundedRect& own, int row, SampleRange columns) {
            const int divisor = picture.grid(plane) == kFullGrid ? 1 : 2;
            const Plane<const std::uint8_t>& from = above.planes[plane];
            const int left = x / divisor;
            const int sourceRow = row - y / divisor;
            const SampleRange both = limited(
                std::max(columns.begin, left), std::min(columns.end, left + from.width), columns);
            if (sourceRow < 0 || sourceRow >= from.height || both.size() == 0) {
                return;
            }
            coverageRow(own, row, both, mask.data());
            std::uint8_t* to = picture.planes[plane].row(row) + both.begin;
            blendMasked(
                to,
                to,
                from.row(sourceRow) + both.begin - left,
                mask.data(),
                std::size_t(both.size()));
        });
}

} // namespace zento
