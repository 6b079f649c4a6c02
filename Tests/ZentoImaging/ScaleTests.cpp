#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImagingTesting.h"
#include "ZentoImaging/Scale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

// The plain definition: a weighted mean of the source around each destination sample's centre.

double kernelAt(double x, double scale, ScaleFilter filter)
{
    x = std::abs(x);
    if (scale >= 0.8) { // Catmull-Rom
        return x < 1   ? 1.5 * x * x * x - 2.5 * x * x + 1
               : x < 2 ? -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2
                       : 0;
    }
    x *= scale;
    if (filter == ScaleFilter::Soft) {
        return std::max(0.0, 1 - x);
    }
    return x < 1   ? (7 * x * x * x - 12 * x * x + 16 / 3.0) / 6 // Mitchell-Netravali
           : x < 2 ? (-7 / 3.0 * x * x * x + 12 * x * x - 20 * x + 32 / 3.0) / 6
                   : 0;
}

std::vector<double> weightsOf(double center, double scale, ScaleFilter filter, int size)
{
    std::vector<double> weights(std::size_t(size), 0.0);
    const int reach = int(2 / std::min(scale, 1.0)) + 2;
    double sum = 0;
    for (int i = int(center) - reach; i <= int(center) + reach; ++i) {
        const double w = kernelAt(i + 0.5 - center, scale, filter);
        weights[std::size_t(std::clamp(i, 0, size - 1))] += w;
        sum += w;
    }
    for (double& w : weights) {
        w /= sum;
    }
    return weights;
}

template <typename Sample>
double reference(
    const OwnedPlane<Sample>& source,
    AxisPlacement x,
    AxisPlacement y,
    ScaleFilter filter,
    int column,
    int row)
{
    const Plane<const Sample> plane = source.view();
    const auto wx =
        weightsOf((column + 0.5 - x.origin) / x.scale, std::abs(x.scale), filter, plane.width);
    const auto wy =
        weightsOf((row + 0.5 - y.origin) / y.scale, std::abs(y.scale), filter, plane.height);
    double value = 0;
    for (int j = 0; j < plane.height; ++j) {
        for (int i = 0; wy[std::size_t(j)] != 0 && i < plane.width; ++i) {
            value += wy[std::size_t(j)] * wx[std::size_t(i)] * plane.row(j)[i];
        }
    }
    return std::clamp(value / (sizeof(Sample) == 2 ? 4 : 1), 0.0, 255.0);
}

struct ScaleCase {
    const char* name = "";
    double scaleX = 1;
    double scaleY = 1;
    double origin = 0;
    ScaleFilter filter = ScaleFilter::Sharp;
};

const ScaleCase kScaleCases[] = {
    {"one to one", 1, 1, 0},
    {"half a sample off", 1, 1, 0.5},
    {"a little smaller", 0.886, 0.886, 3.3},
    {"smaller", 0.59, 0.59, -2.7},
    {"far smaller", 0.31, 0.31, 1.1},
    {"smallest", 0.05, 0.05, 0.4},
    {"larger", 1.77, 1.77, -11.2},
    {"largest", 8, 8, -200.6},
    {"each axis its own", 0.9, 0.443, 0.2, ScaleFilter::Soft},
    {"mirrored", -0.8, 1.2, 70},
};

template <typename Sample>
void expectScaledAsDefined(const ScaleCase& c, int limit)
{
    const auto source = noise<Sample>(83, 61, limit);
    const AxisPlacement x{c.origin, c.scaleX};
    const AxisPlacement y{c.origin / 2, c.scaleY};
    // A window wider than what the source covers, of a width no vector divides.
    const SampleRange columns{-3, 74};
    const SampleRange rows{-2, 23};
    PlaneScaler scaler;
    scaler.prepare(83, 61, x, y, columns, rows, c.filter);
    std::vector<std::uint8_t> out(std::size_t(columns.size()));
    for (int row = rows.begin; row < rows.end; row += 4) {
        scaler.scaleRow(source.view(), row, out.data());
        for (int column = columns.begin; column < columns.end; ++column) {
            const double wanted = reference(source, x, y, c.filter, column, row);
            ASSERT_NEAR(out[std::size_t(column - columns.begin)], wanted, 0.70)
                << c.name << " at " << column << ", " << row;
        }
    }
}

TEST(Scaling, FollowsTheDefinitionAtEveryScale)
{
    for (const ScaleCase& c : kScaleCases) {
        expectScaledAsDefined<std::uint8_t>(c, 256);
        expectScaledAsDefined<std::uint16_t>(c, 1024);
    }
}

TEST(Scaling, IsTheSameOnEveryProcessor)
{
    const auto source = noise<std::uint16_t>(131, 40, 1024);
    for (const ScaleCase& c : kScaleCases) {
        std::vector<std::uint8_t> first;
        forEachTarget([&](const std::string& target) {
            PlaneScaler scaler;
            scaler.prepare(
                131, 40, {c.origin, c.scaleX}, {0, c.scaleY}, {0, 117}, {0, 20}, c.filter);
            OwnedPlane<std::uint8_t> out(117, 20);
            scalePlane<std::uint16_t>(scaler, source.view(), out.view());
            if (first.empty()) {
                first = out.samples();
            }
            EXPECT_EQ(out.samples(), first) << c.name << " on " << target;
        });
    }
}

TEST(Scaling, KeepsFlatAreasAndDoesNotWrapAtEdges)
{
    for (const ScaleCase& c : kScaleCases) {
        for (const int value : {0, 16, 128, 255}) {
            const OwnedPlane<std::uint8_t> flat(40, 40, value);
            PlaneScaler scaler;
            scaler.prepare(40, 40, {c.origin, c.scaleX}, {0, c.scaleY}, {0, 30}, {0, 2}, c.filter);
            OwnedPlane<std::uint8_t> out(30, 2);
            scalePlane<std::uint8_t>(scaler, flat.view(), out.view());
            EXPECT_EQ(std::ranges::count(out.samples(), value), 60) << c.name << " of " << value;
        }
    }
    // Overshoot beside a hard edge ends at the limits instead of coming out at the other side.
    OwnedPlane<std::uint8_t> step(40, 1);
    for (int x = 20; x < 40; ++x) {
        step.at(x, 0) = 255;
    }
    PlaneScaler scaler;
    scaler.prepare(40, 1, {0, 3}, {0, 1}, {0, 120}, {0, 1});
    OwnedPlane<std::uint8_t> out(120, 1);
    scalePlane<std::uint8_t>(scaler, step.view(), out.view());
    EXPECT_TRUE(std::ranges::all_of(
        out.samples().begin(), out.samples().begin() + 58, [](int v) { return v < 30; }));
    EXPECT_TRUE(std::ranges::all_of(
        out.samples().begin() + 62, out.samples().end(), [](int v) { return v > 225; }));
}

TEST(Scaling, MovesAMarkByExactlyWhatIsAsked)
{
    OwnedPlane<std::uint8_t> source(64, 64);
    for (int y = 30; y < 34; ++y) {
        for (int x = 28; x < 32; ++x) {
            source.at(x, y) = 200;
        }
    }
    for (const double scale : {0.5, 0.886, 1.0, 2.3}) {
        for (double shift = 0; shift < 1; shift += 0.1) {
            PlaneScaler scaler;
            scaler.prepare(64, 64, {shift, scale}, {2 * shift, scale}, {0, 150}, {0, 150});
            OwnedPlane<std::uint8_t> out(150, 150);
            scalePlane<std::uint8_t>(scaler, source.view(), out.view());
            const Vec2 center = centroid(out.view());
            EXPECT_NEAR(center.x, 30 * scale + shift, 0.1) << scale;
            EXPECT_NEAR(center.y, 32 * scale + 2 * shift, 0.1) << scale;
        }
    }
}

/// A blue square on grey in planes of any siting: chroma is the area average around each site.
template <typename Sample>
struct MarkedPicture {
    OwnedPlane<Sample> y{64, 64, sizeof(Sample) == 2 ? 400 : 100};
    OwnedPlane<Sample> cb;
    OwnedPlane<Sample> cr;

    explicit MarkedPicture(const PlaneGrid& grid)
        : cb(32, int(64 * grid.perPixel.y), sizeof(Sample) == 2 ? 512 : 128)
        , cr(cb)
    {
        // Four chroma samples around the square's centre: the luma goes where they say it is.
        const Vec2 site{33.0, 32.0};
        const Vec2 own = grid.toPlane(site);
        for (int j = 0; j < cb.view().height; ++j) {
            for (int i = 0; i < 32; ++i) {
                const double far = std::hypot(
                    (i + 0.5 - own.x) / grid.perPixel.x, (j + 0.5 - own.y) / grid.perPixel.y);
                cb.at(i, j) = static_cast<Sample>(
                    cb.at(i, j) + (sizeof(Sample) == 2 ? 4 : 1) * 90 * std::exp(-far * far / 18));
            }
        }
        for (int j = 0; j < 64; ++j) {
            for (int i = 0; i < 64; ++i) {
                const double far = std::hypot(i + 0.5 - site.x, j + 0.5 - site.y);
                y.at(i, j) = static_cast<Sample>(
                    y.at(i, j) + (sizeof(Sample) == 2 ? 4 : 1) * 90 * std::exp(-far * far / 18));
            }
        }
    }
    YuvPlanes<const Sample> planes() const { return {y.view(), cb.view(), cr.view()}; }
};

TEST(Scaling, KeepsColourWhereLumaIs)
{
    const MarkedPicture<std::uint16_t> from422(kChroma422Grid);
    const MarkedPicture<std::uint8_t> from420(kChroma420Grid);
    for (const double scale : {0.5, 0.886, 1.0, 1.77}) {
        for (const double shift : {0.0, 0.3, 0.75}) {
            const PicturePlacement placement{{shift, 1.5 * shift}, scale, scale};
            PictureScaler scaler;
            const auto expectTogether = [&](const auto& source, const char* name) {
                Picture out(120, 120, Layout::Yuv420);
                drawScaled(scaler, source, placement, out.view(), {0, 0, 120, 120});
                const Vec2 luma = centroid(std::as_const(out).plane(0), 100);
                const Vec2 chroma = centroid(std::as_const(out).plane(1), 128);
                const Vec2 wanted = kChroma420Grid.toPlane(luma);
                EXPECT_NEAR(chroma.x, wanted.x, 0.05) << name << " at " << scale;
                EXPECT_NEAR(chroma.y, wanted.y, 0.05) << name << " at " << scale;
            };
            expectTogether(from422.planes(), "4:2:2");
            expectTogether(from420.planes(), "4:2:0");
        }
    }
}

TEST(Scaling, DrawsOnlyTheWindow)
{
    const MarkedPicture<std::uint16_t> source(kChroma422Grid);
    Picture out(40, 40, Layout::Yuv420);
    fill(out.view(), Color{1, 1, 1});
    PictureScaler scaler;
    drawScaled(scaler, source.planes(), {{-4, -4}, 1, 1}, out.view(), {10, 12, 8, 6});
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= 10 && x < 18 && y >= 12 && y < 18;
            EXPECT_EQ(out.plane(0).row(y)[x] == 235, !inside) << x << ", " << y;
        }
    }
}

} // namespace
} // namespace zento
