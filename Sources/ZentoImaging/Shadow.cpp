#include "ZentoImaging/Shadow.h"

#include "ZentoImaging/Blend.h"
#include "ZentoImaging/Kernels/ShadowRows.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

namespace zento {

namespace {

constexpr double kLeastSigma = 0.5;
constexpr double kReach = 3;        // sigmas: beyond, less than half a level of 255 is left
constexpr double kSmoothSigma = 4;  // from here on a patch of whole samples is smooth enough
constexpr int kStepsASigma = 64;    // of the table of the normal distribution
constexpr double kTableReach = 4.5; // sigmas

double normal(double x)
{
    return 0.5 * std::erfc(-x / std::numbers::sqrt2);
}

std::int16_t fixed(double value, double one)
{
    return static_cast<std::int16_t>(std::lround(std::clamp(value, 0.0, 1.0) * one));
}

/// What a rounded corner lacks of a square one, blurred: with the corner at the origin and the
/// shape towards positive u and v, the missing area is 0 <= x <= r, 0 <= y <= h(x), so the field is
///   M(u, v) = integral over x of g(u - x) (N(v) - N(v - h(x)))
/// with the Gaussian g and its integral N. In x = r (1 - cos a), h = r (1 - sin a) it is smooth in
/// a and the midpoint rule is good to 1e-4.
class CornerField {
public:
    CornerField(double radius, double sigma);

    int steps() const { return m_steps; } // a sample
    int size() const { return m_size; }   // samples along each axis
    /// Where in the field a place lies, in steps from its first value; negative is before it.
    double position(double u) const { return (u + m_reach) * m_steps; }
    double last() const { return double(m_size * m_steps - 1); }

    enum class Side { Left, Right };
    /// Values a sample apart along u, beginning at a step (counted from the field's end on the
    /// right side), for one step of v.
    const std::int16_t* row(Side side, int stepU, int stepV) const;

private:
    double m_reach;
    int m_steps;
    int m_size;
    // [side][phase of v][v][phase of u][u]
    std::vector<std::int16_t> m_values;
};

CornerField::CornerField(double radius, double sigma)
    : m_reach(std::ceil(kReach * sigma))
    , m_steps(std::max(1, int(std::ceil(kSmoothSigma / sigma))))
    , m_size(int(std::ceil(radius + 2 * m_reach)) + 2)
{
    const std::size_t count = std::size_t(m_size) * std::size_t(m_steps);
    const int nodes = std::max(48, int(8 * radius / sigma));
    std::vector<float> field(count * count);
    std::vector<float> alongU(count);
    const double step = std::numbers::pi / 2 / nodes;
    for (int k = 0; k < nodes; ++k) {
        const double angle = (k + 0.5) * step;
        const double x = radius * (1 - std::cos(angle));
        const double height = radius * (1 - std::sin(angle));
        const double weight =
            radius * std::sin(angle) * step / (sigma * std::sqrt(2 * std::numbers::pi));
        for (std::size_t i = 0; i < count; ++i) {
            const double distance = (double(i) / m_steps - m_reach - x) / sigma;
            alongU[i] = float(weight * std::exp(-0.5 * distance * distance));
        }
        for (std::size_t j = 0; j < count; ++j) {
            const double v = double(j) / m_steps - m_reach;
            const auto alongV = float(normal(v / sigma) - normal((v - height) / sigma));
            float* row = &field[j * count];
            for (std::size_t i = 0; i < count; ++i) {
                row[i] += alongU[i] * alongV;
            }
        }
    }
    m_values.resize(2 * count * count);
    const auto steps = std::size_t(m_steps);
    const auto size = std::size_t(m_size);
    for (std::size_t j = 0; j < count; ++j) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::int16_t value = fixed(field[j * count + i], kernel::kCovered);
            const auto at = [&](std::size_t u) {
                return (j * steps + u % steps) * size + u / steps;
            };
            m_values[at(i)] = value;
            m_values[count * count + at(count - 1 - i)] = value;
        }
    }
}

const std::int16_t* CornerField::row(Side side, int stepU, int stepV) const
{
    const auto steps = std::size_t(m_steps);
    const auto size = std::size_t(m_size);
    const std::size_t count = size * steps;
    const auto u = std::size_t(stepU);
    return m_values.data() + (side == Side::Left ? 0 : count * count)
           + (std::size_t(stepV) * steps + u % steps) * size + u / steps;
}

/// The normal distribution by interpolation in a table: a call for every column of every frame.
class NormalTable {
public:
    NormalTable()
    {
        for (int i = 0; i <= int(2 * kTableReach * kStepsASigma) + 1; ++i) {
            m_values.push_back(normal(double(i) / kStepsASigma - kTableReach));
        }
    }
    double at(double x) const
    {
        const double place = std::clamp(x + kTableReach, 0.0, 2 * kTableReach) * kStepsASigma;
        const auto i = std::size_t(place);
        return m_values[i] + (m_values[i + 1] - m_values[i]) * (place - double(i));
    }

private:
    std::vector<double> m_values;
};

} // namespace

struct Shadow::Field {
    double radius;
    double sigma;
    CornerField corner;
    NormalTable normal;
    Rect rect;
    std::vector<std::int16_t> profile; // the product's horizontal factor
    std::vector<std::int16_t> row;
    std::vector<std::uint8_t>
        straight;                // the mask of a row that no horizontal edge or corner reaches
    double straightOpacity = -1; // of that mask; negative: not worked out yet

    Field(double r, double s)
        : radius(r)
        , sigma(s)
        , corner(r, s)
    {
    }

    double inside(double place, double from, double to) const
    {
        return normal.at((place - from) / sigma) - normal.at((place - to) / sigma);
    }
    bool isStraight(int y) const;
    void maskOf(int y, SampleRange columns, double opacity, std::uint8_t* mask);
    void subtractCorners(double v, SampleRange columns);
    void subtractCorner(CornerField::Side side, double v, SampleRange columns);
};

void Shadow::Field::subtractCorners(double v, SampleRange columns)
{
    const double position = corner.position(v);
    if (radius > 0 && position >= 0 && position < corner.last()) {
        subtractCorner(CornerField::Side::Left, position, columns);
        subtractCorner(CornerField::Side::Right, position, columns);
    }
}

void Shadow::Field::subtractCorner(CornerField::Side side, double v, SampleRange columns)
{
    // The step of the field at column 0's centre. The right side's values are stored in reverse, so
    // both go up by `steps` a column.
    const double atZero = side == CornerField::Side::Left
                              ? corner.position(0.5 - rect.x)
                              : corner.last() - corner.position(rect.x + rect.w - 0.5);
    const int steps = corner.steps();
    const int first = std::max(columns.begin, int(std::ceil(-atZero / steps)));
    const double u = atZero + double(first) * steps;
    const int stepU = std::max(0, int(u));
    const int available = corner.size() - (stepU + 1) / steps;
    const int count = std::min(columns.end - first, available);
    if (count <= 0) {
        return;
    }
    const int stepV = int(v);
    const kernel::Patch patch{
        corner.row(side, stepU, stepV),
        corner.row(side, stepU + 1, stepV),
        corner.row(side, stepU, stepV + 1),
        corner.row(side, stepU + 1, stepV + 1),
        fixed(u - stepU, 32767),
        fixed(v - stepV, 32767)};
    kernel::subtractPatch(patch, std::size_t(count), row.data() + (first - columns.begin));
}

Shadow::Shadow(double radius, double sigma)
    : m_field(std::make_unique<Field>(std::max(radius, 0.0), std::max(sigma, kLeastSigma)))
{
}

Shadow::~Shadow() = default;
Shadow::Shadow(Shadow&&) noexcept = default;
Shadow& Shadow::operator=(Shadow&&) noexcept = default;

double Shadow::radius() const
{
    return m_field->radius;
}
double Shadow::sigma() const
{
    return m_field->sigma;
}

void Shadow::place(const Rect& rect, int width)
{
    Field& f = *m_field;
    if (f.rect == rect && int(f.profile.size()) == width) {
        return;
    }
    f.rect = rect;
    f.profile.resize(std::size_t(width));
    f.row.resize(std::size_t(width));
    f.straight.resize(std::size_t(width));
    f.straightOpacity = -1;
    for (int x = 0; x < width; ++x) {
        f.profile[std::size_t(x)] =
            fixed(f.inside(x + 0.5, rect.x, rect.x + rect.w), kernel::kCovered);
    }
}

bool Shadow::Field::isStraight(int y) const
{
    const double top = y + 0.5 - rect.y;
    return corner.position(std::min(top, rect.h - top)) >= corner.last();
}

void Shadow::Field::maskOf(int y, SampleRange columns, double opacity, std::uint8_t* mask)
{
    const auto count = std::size_t(columns.size());
    const double top = y + 0.5 - rect.y;
    kernel::scaleProfile(
        profile.data() + columns.begin,
        fixed(inside(y + 0.5, rect.y, rect.y + rect.h), 32767),
        count,
        row.data());
    subtractCorners(top, columns);
    subtractCorners(rect.h - top, columns);
    kernel::coverageToMask(row.data(), fixed(opacity, 32767), count, mask);
}

void Shadow::maskRow(int y, SampleRange columns, double opacity, std::uint8_t* mask)
{
    Field& f = *m_field;
    assert(columns.begin >= 0 && columns.end <= int(f.profile.size()));
    if (!f.isStraight(y)) {
        f.maskOf(y, columns, opacity, mask);
        return;
    }
    if (f.straightOpacity != opacity) {
        f.maskOf(y, {0, int(f.straight.size())}, opacity, f.straight.data());
        f.straightOpacity = opacity;
    }
    std::copy_n(f.straight.data() + columns.begin, columns.size(), mask);
}

SampleRange Shadow::rows(int limit) const
{
    const double reach = kReach * m_field->sigma;
    const Rect& r = m_field->rect;
    return touchedSamples(r.y - reach, r.y + r.h + reach, limit);
}

SampleRange Shadow::columns(int limit) const
{
    const double reach = kReach * m_field->sigma;
    const Rect& r = m_field->rect;
    return touchedSamples(r.x - reach, r.x + r.w + reach, limit);
}

ShadowCache::ShadowCache() = default;
ShadowCache::~ShadowCache() = default;
ShadowCache::ShadowCache(ShadowCache&&) noexcept = default;
ShadowCache& ShadowCache::operator=(ShadowCache&&) noexcept = default;

Shadow&
ShadowCache::placed(const RoundedRect& shape, double sigma, const PlaneGrid& grid, int width)
{
    constexpr std::size_t kMost = 8; // a card, a bubble and a mark, each at two resolutions
    RoundedRect own = shape.inPlane(grid);
    own.radius = std::clamp(own.radius, 0.0, 0.5 * std::max(0.0, std::min(own.rect.w, own.rect.h)));
    const double ownSigma = std::max(sigma * grid.perPixel.x, kLeastSigma);
    auto found = std::ranges::find_if(m_shadows, [&](const Shadow& s) {
        return s.radius() == own.radius && s.sigma() == ownSigma;
    });
    if (found == m_shadows.end()) {
        if (m_shadows.size() >= kMost) {
            m_shadows.erase(m_shadows.begin());
        }
        m_shadows.emplace_back(own.radius, ownSigma);
        found = m_shadows.end() - 1;
    }
    found->place(own.rect, width);
    return *found;
}

void drawShadow(
    const PictureView& picture,
    const RoundedRect& shape,
    double sigma,
    const Color& color,
    ShadowCache& cache)
{
    const std::array<std::uint8_t, 3> values = planeValues(color, picture.layout);
    std::vector<std::uint8_t> mask(std::size_t(picture.width));
    for (std::size_t i = 0; i < 3; ++i) {
        const Plane<std::uint8_t>& plane = picture.planes[i];
        Shadow& shadow = cache.placed(shape, sigma, picture.grid(i), plane.width);
        const SampleRange rows = shadow.rows(plane.height);
        const SampleRange columns = shadow.columns(plane.width);
        for (int y = rows.begin; y < rows.end; ++y) {
            shadow.maskRow(y, columns, color.alpha, mask.data());
            blendConstant(
                plane.row(y) + columns.begin, mask.data(), values[i], std::size_t(columns.size()));
        }
    }
}

} // namespace zento
