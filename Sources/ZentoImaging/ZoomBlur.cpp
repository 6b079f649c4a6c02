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
    const std::size_t count = std::size_t(width) + 2 * std::size_t(margin);
    constexpr std::size_t kBlock = StretchTable::kBlock;
    StretchTable table;
    table.padded = (count + kBlock - 1) / kBlock * kBlock;
    std::vector<SourcePlace> places;
    places.reserve(count);
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
    table.weights.resize(table.taps * table.padded);
    for (std::size_t x = 0; x < count; ++x) {
        const std::size_t block = x / kBlock;
        const int base = table.bases[block] + first + int(x % kBlock);
        const auto tap = std::size_t(places[x].before - base);
        const auto after = static_cast<std::int16_t>(std::lround(places[x].share * kernel::kOne));
        table.weights[tap * table.padded + x] = static_cast<std::int16_t>(kernel::kOne - after);
        table.weights[(tap + 1) * table.padded + x] = after;
    }
    return table;
}

/// What is made: a picture and so many samples more on either side.
struct OutputArea {
    int width = 0;
    int height = 0;
    int marginX = 0;
    int marginY = 0;
};

/// The mean of a picture's copies at several scales around a centre. It is given its input row by
/// row from top to bottom and keeps what the next outputs need.
class ScaledCopies {
public:
    ScaledCopies(std::vector<double> scales, Vec2 center, const OutputArea& area)
        : m_scales(std::move(scales))
        , m_center(center)
        , m_reachX(reach(center.x, area.width, area.marginX))
        , m_reachY(reach(center.y, area.height, area.marginY))
        , m_next(-area.marginY - m_reachY)
        , m_ready(m_next)
        , m_input(
              2 * m_reachY + 1 + kernel::kStretchedRows,
              std::size_t(area.width) + 2 * std::size_t(area.marginX + m_reachX) + kSlack)
    {
        const auto rowWidth = std::size_t(area.width) + 2 * std::size_t(area.marginX) + kSlack;
        for (const double scale : m_scales) {
            if (scale != 1) { // the picture itself needs no copy
                const int first = -area.marginX - m_reachX;
                m_tables.push_back(stretchTable(area.width, area.marginX, first, center.x, scale));
                m_copies.emplace_back(2 * m_reachY + 1 + kernel::kStretchedRows, rowWidth);
            }
        }
    }

    /// How far the input goes beyond the output, in samples.
    int reachX() const { return m_reachX; }
    int reachY() const { return m_reachY; }

    /// Whether more input is needed for row y.
    bool needsRow(int y) const { return m_ready <= y + m_reachY; }
    /// The input row that is next, and where it goes.
    int nextRow() const { return m_next; }
    std::int16_t* rowToFill() { return m_input.row(m_next); }
    void rowIsFilled()
    {
        ++m_next;
        if (m_next - m_ready == kernel::kStretchedRows) {
            stretchLatest();
            m_ready = m_next;
        }
    }

    struct Sum {
        std::vector<const std::int16_t*> rows;
        std::vector<std::int16_t> weights;
    };

    /// What makes row y, for which no more input is needed.
    const Sum& sum(int y)
    {
        m_sum.rows.clear();
        m_exact.clear();
        auto copy = m_copies.begin();
        for (const double scale : m_scales) {
            if (scale == 1) {
                m_sum.rows.push_back(m_input.row(y) + m_reachX);
                m_exact.push_back(1);
                continue;
            }
            const auto [before, share] = sourcePlace(y, m_center.y, scale);
            m_sum.rows.push_back(copy->row(before));
            m_sum.rows.push_back(copy->row(before + 1));
            m_exact.push_back(1 - share);
            m_exact.push_back(share);
            ++copy;
        }
        m_sum.weights = fixedWeights(m_exact);
        return m_sum;
    }

private:
    int reach(double middle, int size, int margin) const
    {
        const double most = std::max(m_scales.back() - 1, 1 - m_scales.front());
        return int(std::ceil((std::max(middle, size - middle) + margin) * most)) + 1;
    }

    void stretchLatest()
    {
        std::array<const std::int16_t*, kernel::kStretchedRows> from{};
        std::array<std::int16_t*, kernel::kStretchedRows> to{};
        for (std::size_t i = 0; i < m_tables.size(); ++i) {
            for (int r = 0; r < kernel::kStretchedRows; ++r) {
                from[std::size_t(r)] = m_input.row(m_ready + r);
                to[std::size_t(r)] = m_copies[i].row(m_ready + r);
            }
            kernel::stretchRows(from.data(), m_tables[i], to.data());
        }
    }

    std::vector<double> m_scales; // ascending
    Vec2 m_center;
    int m_reachX;
    int m_reachY;
    int m_next;
    int m_ready; // the first row that has no copies yet
    RowRing m_input;
    std::vector<StretchTable> m_tables; // of all scales but 1
    std::vector<RowRing> m_copies;
    Sum m_sum;
    std::vector<double> m_exact;
};

/// Scales evenly spread over a stretch, in the middle of as many equal parts.
std::vector<double> spreadScales(int count, double stretch)
{
    std::vector<double> scales;
    scales.reserve(std::size_t(count));
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
    const std::size_t margin = std::size_t(first.reachX()) + std::size_t(second.reachX());
    const std::size_t betweenWidth = width + 2 * std::size_t(area.marginX);
    for (int y = 0; y < plane.height; ++y) {
        while (second.needsRow(y)) {
            const int between = second.nextRow();
            while (first.needsRow(between)) {
                const int line = std::clamp(first.nextRow(), 0, plane.height - 1);
                kernel::widenRow(plane.row(line), width, margin, first.rowToFill());
                first.rowIsFilled();
            }
            const ScaledCopies::Sum& sum = first.sum(between);
            kernel::weightRows(
                sum.rows.data(),
                sum.weights.data(),
                int(sum.rows.size()),
                betweenWidth,
                second.rowToFill());
            second.rowIsFilled();
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
