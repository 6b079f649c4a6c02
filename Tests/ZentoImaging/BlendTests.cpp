#include "ZentoImaging/Blend.h"
#include "ZentoImaging/Blur.h"
#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImagingTesting.h"
#include "ZentoImaging/Shadow.h"
#include "ZentoImaging/Shapes.h"
#include "ZentoImaging/Sprite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zento {
namespace {

constexpr std::size_t kCount = 203; // divided by no vector

std::vector<std::uint8_t> row(unsigned seed)
{
    auto samples = noise<std::uint8_t>(int(kCount), 1, 256, seed).samples();
    samples[0] = 0;
    samples[1] = 255;
    return samples;
}

double rounded(double value)
{
    return std::floor(value + 0.5);
}

TEST(BlendingRows, FollowsTheDefinition)
{
    const auto below = row(1);
    const auto above = row(2);
    const auto mask = row(3);
    forEachTarget([&](const std::string& target) {
        auto constant = below;
        blendConstant(constant.data(), mask.data(), 77, kCount);
        auto masked = below;
        blendMasked(masked.data(), masked.data(), above.data(), mask.data(), kCount);
        auto product = mask;
        multiplyMasks(product.data(), product.data(), above.data(), kCount);
        auto faded = mask;
        scaleMask(faded.data(), 100, kCount);
        for (std::size_t i = 0; i < kCount; ++i) {
            const double m = mask[i] / 255.0;
            ASSERT_EQ(constant[i], rounded(below[i] * (1 - m) + 77 * m)) << target;
            ASSERT_EQ(masked[i], rounded(below[i] * (1 - m) + above[i] * m)) << target;
            ASSERT_EQ(product[i], rounded(above[i] * m)) << target;
            ASSERT_EQ(faded[i], rounded(100 * m)) << target;
        }
    });
}

TEST(BlendingRows, PremultipliedIsSourceOverOnEveryProcessor)
{
    const auto below = row(4);
    const auto alpha = row(5);
    auto color = row(6);
    for (std::size_t i = 0; i < kCount; ++i) {
        color[i] = static_cast<std::uint8_t>(color[i] * alpha[i] / 255);
    }
    for (const int opacity : {0, 1, 128, 255}) {
        std::vector<std::uint8_t> first;
        forEachTarget([&](const std::string& target) {
            auto out = below;
            blendPremultiplied(
                out.data(), color.data(), alpha.data(), std::uint8_t(opacity), kCount);
            first = first.empty() ? out : first;
            ASSERT_EQ(out, first) << target;
            for (std::size_t i = 0; i < kCount; ++i) {
                const double o = opacity / 255.0;
                ASSERT_NEAR(out[i], below[i] * (1 - alpha[i] / 255.0 * o) + color[i] * o, 1.5);
            }
        });
    }
}

/// A soft disc of one colour, and where it lies.
Canvas disc(const Color& color)
{
    Canvas canvas(40, 40);
    canvas.fill(Path().circle({20, 20}, 15), color);
    canvas.blur(2);
    return canvas;
}

TEST(BlendingInYuv, EqualsBlendingInRgbWithinOneAndAHalfLevels)
{
    for (const Color& ground : {Color{0.1, 0.2, 0.5}, {0.9, 0.85, 0.2}, {0.5, 0.5, 0.5}}) {
        for (const Color& ink : {Color{1, 1, 1, 0.8}, {0.8, 0.1, 0.2, 0.5}, {0, 0, 0, 1}}) {
            Picture yuv(48, 48, Layout::Yuv420);
            Picture rgb(48, 48, Layout::Rgb);
            fill(yuv.view(), ground);
            fill(rgb.view(), ground);
            drawSprite(yuv.view(), Sprite(disc(ink), Layout::Yuv420), {4, 4}, 1, 0.7);
            drawSprite(rgb.view(), Sprite(disc(ink), Layout::Rgb), {4, 4}, 1, 0.7);
            // Luma is not sub-sampled, so it can be compared sample by sample.
            for (int y = 0; y < 48; ++y) {
                for (int x = 0; x < 48; ++x) {
                    const double r = rgb.plane(0).row(y)[x];
                    const double g = rgb.plane(1).row(y)[x];
                    const double b = rgb.plane(2).row(y)[x];
                    const double luma = 16 + (0.2126 * r + 0.7152 * g + 0.0722 * b) * 219 / 255;
                    ASSERT_NEAR(yuv.plane(0).row(y)[x], luma, 1.5) << x << ", " << y;
                }
            }
            const std::array<std::uint8_t, 3> middle{
                rgb.plane(0).row(24)[24], rgb.plane(1).row(24)[24], rgb.plane(2).row(24)[24]};
            const auto wanted = planeValues(colorOfPlanes(middle, Layout::Rgb), Layout::Yuv420);
            EXPECT_NEAR(yuv.plane(1).row(12)[12], wanted[1], 1.5);
            EXPECT_NEAR(yuv.plane(2).row(12)[12], wanted[2], 1.5);
        }
    }
}

TEST(Sprites, AreTheirCanvasAtAWholePlace)
{
    const Canvas canvas = disc({1, 0, 0, 1});
    Picture picture(60, 60, Layout::Rgb);
    drawSprite(picture.view(), Sprite(canvas, Layout::Rgb), {7, 9}, 1, 1);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            const int red = int(canvas.pixels().row(y)[x] >> 16 & 0xff);
            ASSERT_EQ(int(picture.plane(0).row(y + 9)[x + 7]), red);
        }
    }
}

TEST(Sprites, GlideWithoutJitterAndColourStaysWithLuma)
{
    Canvas master(192, 288);
    master.fill(Path().ellipse({40, 60, 100, 160}), Color{0, 0, 1});
    for (const Layout layout : {Layout::Yuv420, Layout::Rgb}) {
        const Sprite sprite(master, layout);
        const std::size_t marked = layout == Layout::Rgb ? 2 : 1;
        for (double scale : {0.19, 0.5}) {
            for (double shift = 0; shift < 2; shift += 0.17) {
                Picture picture(200, 200, layout);
                const Vec2 origin{11.4 + shift, 20 + 0.5 * shift};
                drawSprite(picture.view(), sprite, origin, scale, 1);
                const int ground = layout == Layout::Rgb ? 0 : 128;
                const Vec2 center = centroid(std::as_const(picture).plane(marked), ground);
                const Vec2 wanted = picture.view().grid(marked).toPlane(
                    Vec2{origin.x + 90 * scale, origin.y + 140 * scale});
                EXPECT_NEAR(center.x, wanted.x, 0.05) << scale << ", " << shift;
                EXPECT_NEAR(center.y, wanted.y, 0.05) << scale << ", " << shift;
            }
        }
    }
}

TEST(Sprites, AreTheSameOnEveryProcessor)
{
    std::vector<std::uint8_t> first;
    forEachTarget([&](const std::string& target) {
        Picture picture(261, 259, Layout::Yuv420);
        fill(picture.view(), {0.3, 0.9, 0.7});
        const Sprite sprite(disc({0.9, 0.2, 0.4, 0.8}), Layout::Yuv420);
        drawSprite(picture.view(), sprite, {12.3, 4.6}, 0.7, 0.85);
        const auto samples = samplesOf(picture.view());
        first = first.empty() ? samples : first;
        EXPECT_EQ(samples, first) << target;
    });
}

TEST(Sprites, AreCutAtTheEdges)
{
    const Sprite sprite(disc({1, 1, 1, 1}), Layout::Yuv420);
    for (const Vec2 origin : {Vec2{-20, -20}, {45, 45}, {-100, 0}, {300, 300}, {-20, 45}}) {
        Picture picture(61, 59, Layout::Yuv420);
        drawSprite(picture.view(), sprite, origin, 1.3, 0.9); // a sanitizer sees a stray write
    }
    Picture picture(61, 59, Layout::Yuv420);
    drawSprite(picture.view(), sprite, {-26, 10}, 1, 1);
    EXPECT_GT(picture.plane(0).row(30)[0], 200);
}

double sum(const Plane<const std::uint8_t>& plane)
{
    double total = 0;
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            total += plane.row(y)[x];
        }
    }
    return total;
}

const RoundedRect kShapes[] = {
    {{20, 30, 60, 40}, 0},
    {{20.3, 30.6, 60.1, 40.7}, 12},
    {{31.5, 22.25, 50, 50}, 25}, // a circle
    {{10.2, 40.1, 70, 8}, 30},   // radius limited to 4
};

TEST(Shapes, CoverTheirArea)
{
    for (const RoundedRect& shape : kShapes) {
        Picture picture(110, 100, Layout::Rgb);
        fillRoundedRect(picture.view(), shape, {1, 1, 1});
        const double radius = std::min({shape.radius, 0.5 * shape.rect.w, 0.5 * shape.rect.h});
        const double area = shape.rect.w * shape.rect.h - (4 - std::numbers::pi) * radius * radius;
        EXPECT_NEAR(sum(std::as_const(picture).plane(0)) / 255, area, 0.004 * area);
        const Vec2 center = centroid(std::as_const(picture).plane(0));
        EXPECT_NEAR(center.x, shape.rect.center().x, 0.02);
        EXPECT_NEAR(center.y, shape.rect.center().y, 0.02);
    }
}

TEST(Shapes, OpaqueColumnsAreThoseOfFullCoverage)
{
    for (const RoundedRect& shape : kShapes) {
        for (int y = 0; y < 100; ++y) {
            std::vector<std::uint8_t> mask(110);
            coverageRow(shape, y, {0, 110}, mask.data());
            const SampleRange opaque = opaqueColumns(shape, y, 110);
            const SampleRange touched = touchedColumns(shape, y, 110);
            for (int x = 0; x < 110; ++x) {
                if (x >= opaque.begin && x < opaque.end) {
                    ASSERT_EQ(mask[std::size_t(x)], 255);
                } else if (x < touched.begin || x >= touched.end) {
                    ASSERT_EQ(mask[std::size_t(x)], 0);
                }
            }
            ASSERT_LE(std::ranges::count(mask, 255) - opaque.size(), 2) << "row " << y;
        }
    }
}

TEST(Shapes, ARingSurroundsItsShape)
{
    Picture picture(110, 100, Layout::Yuv420);
    fillRing(picture.view(), kShapes[2], 6, Color::gray(1));
    const Rect r = kShapes[2].rect;
    const double area = std::numbers::pi * (31.0 * 31.0 - 25.0 * 25.0);
    const Picture black(110, 100, Layout::Yuv420);
    const double ink = sum(std::as_const(picture).plane(0)) - sum(black.plane(0));
    EXPECT_NEAR(ink / (235 - 16), area, 0.01 * area);
    EXPECT_EQ(picture.plane(0).row(int(r.center().y))[int(r.center().x)], 16);
}

TEST(Shapes, ShowAPictureThroughThemselves)
{
    Picture picture(110, 100, Layout::Yuv420);
    Picture above(52, 52, Layout::Yuv420);
    fill(above.view(), {1, 0, 0});
    blendThroughShape(picture.view(), above.view(), 30, 22, kShapes[2]);
    Picture filled(110, 100, Layout::Yuv420);
    fillRoundedRect(filled.view(), kShapes[2], {1, 0, 0});
    EXPECT_EQ(samplesOf(picture.view()), samplesOf(filled.view()));
}

struct ShadowCase {
    RoundedRect shape;
    double sigma = 1;
};
const ShadowCase kShadows[] = {
    {{{60.3, 50.8, 90.4, 70.2}, 12}, 10}, // smaller than what the blur reaches
    {{{60.5, 60.25, 60, 60}, 30}, 6},     // a circle
    {{{40, 40, 110, 80}, 24}, 2.2},       // radius far larger than sigma
    {{{40.7, 40.2, 110, 80}, 0}, 8},
};

/// Blurred by plain summation of coverage, sampled finely.
double blurredCoverage(const ShadowCase& c, double x, double y)
{
    const Rect& r = c.shape.rect;
    const double step = std::min(1.0, c.sigma / 4);
    double total = 0;
    for (double v = -4 * c.sigma; v <= 4 * c.sigma; v += step) {
        for (double u = -4 * c.sigma; u <= 4 * c.sigma; u += step) {
            const Vec2 p{x + u, y + v};
            const double dx = std::abs(p.x - r.center().x) - 0.5 * r.w + c.shape.radius;
            const double dy = std::abs(p.y - r.center().y) - 0.5 * r.h + c.shape.radius;
            const double outside = std::hypot(std::max(dx, 0.0), std::max(dy, 0.0))
                                   + std::min(std::max(dx, dy), 0.0) - c.shape.radius;
            const double inside = std::clamp(0.5 - outside / step, 0.0, 1.0);
            total += inside * std::exp(-0.5 * (u * u + v * v) / (c.sigma * c.sigma));
        }
    }
    return total * step * step / (2 * std::numbers::pi * c.sigma * c.sigma);
}

TEST(Shadows, AreTheBlurredShape)
{
    for (const ShadowCase& c : kShadows) {
        Shadow shadow(c.shape.radius, c.sigma);
        shadow.place(c.shape.rect, 210);
        for (const int y : {30, 45, 52, 61, 85, 112, 125}) {
            std::vector<std::uint8_t> mask(210);
            shadow.maskRow(y, {0, 210}, 1, mask.data());
            for (int x = 20; x < 190; x += 7) {
                const double wanted = 255 * blurredCoverage(c, x + 0.5, y + 0.5);
                ASSERT_NEAR(mask[std::size_t(x)], wanted, 1.0)
                    << "sigma " << c.sigma << " at " << x << ", " << y;
            }
        }
    }
}

TEST(Shadows, KeepTheirAreaSymmetryAndPlace)
{
    for (const ShadowCase& c : kShadows) {
        for (const double shift : {0.0, 0.21, 0.68}) {
            RoundedRect shape = c.shape;
            shape.rect.x += shift;
            shape.rect.y -= shift;
            Picture picture(220, 200, Layout::Rgb);
            ShadowCache cache;
            drawShadow(picture.view(), shape, c.sigma, {1, 1, 1}, cache);
            const Rect& r = shape.rect;
            const double area = r.w * r.h - (4 - std::numbers::pi) * shape.radius * shape.radius;
            EXPECT_NEAR(sum(std::as_const(picture).plane(1)) / 255, area, 0.01 * area);
            const Vec2 center = centroid(std::as_const(picture).plane(1));
            EXPECT_NEAR(center.x, r.center().x, 0.03);
            EXPECT_NEAR(center.y, r.center().y, 0.03);
        }
    }
}

TEST(Shadows, PartsOfARowAreThatRow)
{
    Shadow shadow(12, 5);
    shadow.place({20.4, 20.4, 50, 50}, 100);
    for (int y = 0; y < 100; ++y) {
        std::vector<std::uint8_t> whole(100);
        shadow.maskRow(y, {0, 100}, 0.5, whole.data());
        std::vector<std::uint8_t> parts(100);
        shadow.maskRow(y, {0, 23}, 0.5, parts.data());
        shadow.maskRow(y, {23, 68}, 0.5, parts.data() + 23);
        shadow.maskRow(y, {68, 100}, 0.5, parts.data() + 68);
        ASSERT_EQ(parts, whole) << "row " << y;
    }
}

TEST(Shadows, AreTheSameOnEveryProcessor)
{
    std::vector<std::uint8_t> first;
    forEachTarget([&](const std::string& target) {
        Picture picture(200, 180, Layout::Yuv420);
        fill(picture.view(), {0.8, 0.9, 0.7});
        ShadowCache cache;
        drawShadow(picture.view(), kShadows[0].shape, 9, Color::gray(0, 0.45), cache);
        gaussianBlur(picture.view(), 2.5);
        const auto samples = samplesOf(picture.view());
        first = first.empty() ? samples : first;
        EXPECT_EQ(samples, first) << target;
    });
}

TEST(GaussianBlur, IsTheGaussianAndKeepsFlatAreas)
{
    for (const double sigma : {1.5, 3.0, 17.5}) {
        OwnedPlane<std::uint8_t> step(160, 3);
        for (int y = 0; y < 3; ++y) {
            for (int x = 80; x < 160; ++x) {
                step.at(x, y) = 240;
            }
        }
        gaussianBlur(step.view(), sigma);
        for (int x = 0; x < 160; ++x) {
            // The step as samples: half a sample wide of what a continuous one would be.
            const double wanted = 120 * std::erfc(-(x + 0.5 - 80) / sigma / std::numbers::sqrt2);
            EXPECT_NEAR(step.at(x, 1), wanted, 2.0) << sigma << " at " << x;
        }
        for (const int value : {16, 128, 235}) {
            OwnedPlane<std::uint8_t> flat(50, 20, value);
            gaussianBlur(flat.view(), sigma);
            const auto [least, most] = std::ranges::minmax(flat.samples());
            EXPECT_GE(least, value - 1);
            EXPECT_LE(most, value + 1);
        }
    }
}

} // namespace
} // namespace zento
