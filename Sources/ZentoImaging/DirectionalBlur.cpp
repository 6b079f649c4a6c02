#include "ZentoImaging/FixedWeights.hpp"
#include "ZentoImaging/Kernels/MotionRows.hpp"
#include "ZentoImaging/MotionBlur.h"
#include "ZentoImaging/RowRing.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

namespace zento {
namespace {

constexpr double kLeastReach = 0.05;
constexpr int kMostPieces = 9;

/// A place on the line: its distance from the middle on the line's longer axis, a whole number, so
/// that only the other axis needs interpolation.
struct LinePoint {
    int along;
    double weight;
};

/// A line of that length, samples at its ends by the share of them it covers.
std::vector<LinePoint> wholeLine(double length)
{
    const double half = length / 2;
    const int last = int(std::ceil(half - 0.5));
    std::vector<LinePoint> points;
    for (int k = -last; k <= last; ++k) {
        points.push_back({k, std::min(k + 0.5, half) - std::max(k - 0.5, -half)});
    }
    return points;
}

/// Single points of the line, each between two samples.
std::vector<LinePoint> spacedPoints(int count, double spacing)
{
    std::vector<LinePoint> points;
    for (int i = 0; i < count; ++i) {
        const double place = (i - (count - 1) / 2.0) * spacing;
        const double before = std::floor(place);
        points.push_back({int(before), 1 - (place - before)});
        points.push_back({int(before) + 1, place - before});
    }
    return points;
}

/// A weighted sum of shifted pictures.
struct ShiftSum {
    struct Shift {
        int x;
        int y;
    };
    std::vector<Shift> shifts;
    std::vector<std::int16_t> weights;
    int reachX = 0; // of the longest shift
    int reachY = 0;

    int count() const { return int(shifts.size()); }
};

ShiftSum shiftSum(const std::vector<LinePoint>& points, Vec2 direction)
{
    const bool isFlat = std::abs(direction.x) >= std::abs(direction.y);
    const double slope = isFlat ? direction.y / direction.x : direction.x / direction.y;
    ShiftSum sum;
    std::vector<double> weights;
    const auto add = [&](int along, int across, double weight) {
        constexpr double kNothing = 0.5 / kernel::kOne;
        if (weight < kNothing) {
            return;
        }
        const ShiftSum::Shift shift =
            isFlat ? ShiftSum::Shift{along, across} : ShiftSum::Shift{across, along};
        sum.shifts.push_back(shift);
        sum.reachX = std::max(sum.reachX, std::abs(shift.x));
        sum.reachY = std::max(sum.reachY, std::abs(shift.y));
        weights.push_back(weight);
    };
    for (const LinePoint& point : points) {
        const double across = point.along * slope;
        const double before = std::floor(across);
        const double share = across - before;
        add(point.along, int(before), point.weight * (1 - share));
        add(point.along, int(before) + 1, point.weight * share);
    }
    sum.weights = fixedWeights(weights);
    return sum;
}

/// A line as points of a shorter line: a few samples twice instead of many at once.
struct LineBlur {
    ShiftSum piece;
    ShiftSum whole;
};

LineBlur lineBlur(Vec2 reach)
{
    const double length = 2 * std::max(std::abs(reach.x), std::abs(reach.y));
    LineBlur best;
    int fewest = std::numeric_limits<int>::max();
    for (int pieces = 1; pieces <= kMostPieces; ++pieces) {
        LineBlur blur = {
            .piece = shiftSum(wholeLine(length / pieces), reach),
            .whole = shiftSum(spacedPoints(pieces, length / pieces), reach)};
        const int count = blur.piece.count() + blur.whole.count();
        if (count < fewest) {
            fewest = count;
            best = std::move(blur);
        }
    }
    return best;
}

/// Where the shifted rows begin that make row y from column 0 on, which lies at `origin`.
void findRows(
    const ShiftSum& sum,
    RowRing& ring,
    int y,
    std::ptrdiff_t origin,
    std::vector<const std::int16_t*>& rows)
{
    rows.clear();
    for (const ShiftSum::Shift shift : sum.shifts) {
        rows.push_back(ring.row(y + shift.y) + origin + shift.x);
    }
}

} // namespace

void directionalBlur(Plane<std::uint8_t> plane, Vec2 reach)
{
    const bool isNothing = std::abs(reach.x) < kLeastReach && std::abs(reach.y) < kLeastReach;
    if (isNothing || plane.width <= 0 || plane.height <= 0) {
        return;
    }
    const LineBlur blur = lineBlur(reach);
    const ShiftSum& piece = blur.piece;
    const ShiftSum& whole = blur.whole;
    const int margin = piece.reachX + whole.reachX;
    const auto width = std::size_t(plane.width);
    const std::size_t pieceWidth = width + 2 * std::size_t(whole.reachX);
    RowRing wide(2 * piece.reachY + 1, width + 2 * std::size_t(margin));
    RowRing pieces(2 * whole.reachY + 1, pieceWidth);
    int nextWide = -whole.reachY - piece.reachY;
    int nextPiece = -whole.reachY;
    std::vector<const std::int16_t*> rows;
    for (int y = 0; y < plane.height; ++y) {
        for (; nextPiece <= y + whole.reachY; ++nextPiece) {
            for (; nextWide <= nextPiece + piece.reachY; ++nextWide) {
                const std::uint8_t* row = plane.row(std::clamp(nextWide, 0, plane.height - 1));
                kernel::widenRow(row, width, std::size_t(margin), wide.row(nextWide));
            }
            findRows(piece, wide, nextPiece, piece.reachX, rows);
            kernel::weightRows(
                rows.data(),
                piece.weights.data(),
                piece.count(),
                pieceWidth,
                pieces.row(nextPiece));
        }
        findRows(whole, pieces, y, whole.reachX, rows);
        kernel::weightRowsToBytes(
            rows.data(), whole.weights.data(), whole.count(), width, plane.row(y));
    }
}

void directionalBlur(const PictureView& picture, Vec2 reach)
{
    for (std::size_t i = 0; i < 3; ++i) {
        const Vec2 perPixel = picture.grid(i).perPixel;
        directionalBlur(picture.planes[i], {reach.x * perPixel.x, reach.y * perPixel.y});
    }
}

} // namespace zento
