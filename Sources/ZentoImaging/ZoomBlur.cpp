#include "ZentoImaging/FixedWeights.hpp"
#include "ZentoImaging/Kernels/MotionRows.hpp"
#include "ZentoImaging/MotionBlur.h"
#include "ZentoImaging/RowRing.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace zento {
namespace {

using kernel::StretchTable;

constexpr double kLeastSmear = 0.1; // samples, in the corner farthest from the centre
constexpr int kMostCopies = 9;      // of one step; both together reach 81 samples

// Rows are read and written in whole blocks.
constexpr std::size_t kSlack = 2 * StretchTable::kBlock;

/// Where the source of a sample lies in a copy that is `scale` times as far from the centre.
struct SourcePlace {
    int before;   // the sample before it
    double share; // of the one after it
};

SourcePlace sourcePlace(int at, double center, double scale)
{
    const double place = center + (at + 0.5 - center) * scale - 0.5;
    const double before = std::floor(place);
    return {int(before), place - before};
}

/// Outputs are the columns [-margin, width + margin); the input row begins at column `first`.
StretchTable stretchTable(int width, int margin, int first, double center, double scale)
{
    const auto count = std::size_t(width + 2 * margin);
    constexpr std::size_t kBlock = StretchTable::kBlock;
    StretchTable table;
    table.padded = (count + kBlock - 1) / kBlock * kBlock;
    std::vector<SourcePlace> places;
    for (std::size_t x = 0; x < count; ++x) {
        places.push_back(sourcePlace(int(x) - margin, center, scale));
    }
    for (std::size_t from = 0; from < count; from += kBlock) {
        const std::size_t end = std::min(from + kBlock, count);
        int nearest = places[from].before;
        int farthest = nearest;
        for (std::size_t x = from; x < end; ++x) {
            const int base = places[x].before - int(x - from);
            nearest = std::min(nearest, base);
            farthest = std::max(farthest, base);
        }
        table.bases.push_back(nearest - first);
        table.taps = std::max(table.taps, std::size_t(farthest - nearest + 2));
    }
    if (scale == 1) {
        table.taps = 1;
    }
    table.weights.resize(table.taps * table.padded);
    for (std::size_t x = 0; x < count; ++x) {
        const std::size_t block = x / kBlock;
        const int base = table.bases[block] + first + int(x % kBlock);
        const auto tap = std::size_t(places[x].before - base);
        const auto after = static_cast<std::int16_t>(std::lround(places[x].share * kernel::kOne));
        table.weights[tap * table.padded + x] = static_cast<std::int16_t>(kernel::kOne - after);
        if (after > 0) {
            table.weights[(tap + 1) * table.padded + x] = after;
        }
    }
    return table;
}

/// What is made: a picture and so many samples more on either side.
struct OutputArea {
    int width;
    int height;
    int marginX = 0;
    int marginY = 0;
};

/// The mean of a picture's copies at several scales around a centre. Input rows are taken from top
/// to bottom and each is kept, drawn out, once a copy.
class ScaledCopies {
public:
    ScaledCopies(std::vector<double> scales, Vec2 center, const OutputArea& area)
        : m_scales(std::move(scales))
        , m_center(center)
    {
        const double most = std::max(m_scales.back() - 1, 1 - m_scales.front());
        const auto reach = [most](double middle, int size, int margin) {
            return int(std::ceil((std::max(middle, size - middle) + margin) * most)) + 1;
        };
        m_reachX = reach(center.x, area.width, area.marginX);
        m_reachY = reach(center.y, area.height, area.marginY);
        const auto rowWidth = std::size_t(area.width + 2 * area.marginX) + kSlack;
        for (const double scale : m_scales) {
            m_tables.push_back(
                stretchTable(area.width, area.marginX, -area.marginX - m_reachX, center.x, scale));
            m_copies.emplace_back(2 * m_reachY + 1 + kernel::kStretchedRows, rowWidth);
        }
    }

    /// How far the input must go beyond the output, in samples.
    int reachX() const { return m_reachX; }
    int reachY() const { return m_reachY; }

    /// The rows y, y + 1, and so on, kStretchedRows of them.
    void take(int y, const std::array<const std::int16_t*, kernel::kStretchedRows>& rows)
    {
        std::array<std::int16_t*, kernel::kStretchedRows> out{};
        for (std::size_t i = 0; i < m_tables.size(); ++i) {
            for (int r = 0; r < kernel::kStretchedRows; ++r) {
                out[std::size_t(r)] = m_copies[i].row(y + r);
            }
            kernel::stretchRows(rows.data(), m_tables[i], out.data());
        }
    }

    struct Sum {
        std::vector<const std::int16_t*> rows;
        std::vector<std::int16_t> weights;
    };

    /// What makes row y. Input rows up to y + reachY have been taken.
    const Sum& sum(int y)
    {
        m_sum.rows.clear();
        m_exact.clear();
        for (std::size_t i = 0; i < m_scales.size(); ++i) {
            const auto [before, share] = sourcePlace(y, m_center.y, m_scales[i]);
            m_sum.rows.push_back(m_copies[i].row(before));
            m_sum.rows.push_back(m_copies[i].row(before + 1));
            m_exact.push_back(1 - share);
            m_exact.push_back(share);
        }
        m_sum.weights = fixedWeights(m_exact);
        return m_sum;
    }

private:
    std::vector<double> m_scales;
    Vec2 m_center;
    int m_reachX = 0;
    int m_reachY = 0;
    std::vector<StretchTable> m_tables;
    std::vector<RowRing> m_copies;
    Sum m_sum;
    std::vector<double> m_exact;
};

/// Scales evenly spread over a stretch, in the middle of as many equal parts.
std::vector<double> spreadScales(int count, double stretch)
{
    std::vector<double> scales;
    for (int i = 0; i < count; ++i) {
        scales.push_back(std::exp(stretch * ((i + 0.5) / count - 0.5)));
    }
    return scales;
}

/// How many copies of how many copies there are to be.
struct CopyCounts {
    int fine = kMostCopies;
    int coarse = kMostCopies;
};

/// The fewest that leave no gap in a smear of that length. Odd, so that one of them is the picture.
CopyCounts copyCounts(double smear)
{
    CopyCounts best;
    for (int fine = 1; fine <= kMostCopies; fine += 2) {
        for (int coarse = fine; coarse <= kMostCopies; coarse += 2) {
            if (fine * coarse >= std::max(smear, 2.0) && fine + coarse < best.fine + best.coarse) {
                best = {fine, coarse};
            }
        }
    }
    return best;
}

/// The rows that are taken at once.
class RowSet {
public:
    explicit RowSet(std::size_t width)
        : m_samples(kernel::kStretchedRows * (width + kSlack))
    {
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            m_rows[i] = &m_samples[i * (width + kSlack)];
            m_readOnly[i] = m_rows[i];
        }
    }

    const std::array<std::int16_t*, kernel::kStretchedRows>& rows() const { return m_rows; }
    const std::array<const std::int16_t*, kernel::kStretchedRows>& readOnly() const
    {
        return m_readOnly;
    }

private:
    std::vector<std::int16_t> m_samples;
    std::array<std::int16_t*, kernel::kStretchedRows> m_rows{};
    std::array<const std::int16_t*, kernel::kStretchedRows> m_readOnly{};
};

} // namespace

void zoomBlur(Plane<std::uint8_t> plane, Vec2 center, double stretch)
{
    if (plane.width <= 0 || plane.height <= 0) {
        return;
    }
    const double farX = std::max(std::abs(center.x), std::abs(plane.width - center.x));
    const double farY = std::max(std::abs(center.y), std::abs(plane.height - center.y));
    const double smear = std::hypot(farX, farY) * std::min(stretch, 1.0);
    if (!(smear >= kLeastSmear)) {
        return;
    }
    const auto [fine, coarse] = copyCounts(smear);
    const double whole = std::min(stretch, 1.0);
    OutputArea area = {.width = plane.width, .height = plane.height};
    ScaledCopies second(spreadScales(coarse, whole), center, area);
    area.marginX = second.reachX();
    area.marginY = second.reachY();
    ScaledCopies first(spreadScales(fine, whole / coarse), center, area);

    const auto width = std::size_t(plane.width);
    const int margin = first.reachX() + second.reachX();
    RowSet wide(width + 2 * std::size_t(margin));
    const std::size_t betweenWidth = width + 2 * std::size_t(area.marginX);
    RowSet between(betweenWidth);
    int nextWide = -second.reachY() - first.reachY();
    int nextBetween = -second.reachY();
    for (int y = 0; y < plane.height; ++y) {
        while (nextBetween <= y + second.reachY()) {
            for (std::int16_t* out : between.rows()) {
                while (nextWide <= nextBetween + first.reachY()) {
                    for (std::int16_t* row : wide.rows()) {
                        const int line = std::clamp(nextWide++, 0, plane.height - 1);
                        kernel::widenRow(plane.row(line), width, std::size_t(margin), row);
                    }
                    first.take(nextWide - kernel::kStretchedRows, wide.readOnly());
                }
                const ScaledCopies::Sum& sum = first.sum(nextBetween++);
                kernel::weightRows(
                    sum.rows.data(), sum.weights.data(), int(sum.rows.size()), betweenWidth, out);
            }
            second.take(nextBetween - kernel::kStretchedRows, between.readOnly());
        }
        const ScaledCopies::Sum& sum = second.sum(y);
        kernel::weightRowsToBytes(
            sum.rows.data(), sum.weights.data(), int(sum.rows.size()), width, plane.row(y));
    }
}

void zoomBlur(const PictureView& picture, Vec2 center, double stretch)
{
    for (std::size_t i = 0; i < 3; ++i) {
        zoomBlur(picture.planes[i], picture.grid(i).toPlane(center), stretch);
    }
}

} // namespace zento
