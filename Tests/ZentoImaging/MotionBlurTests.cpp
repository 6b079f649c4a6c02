#include "ImagingTesting.h"
#include "ZentoImaging/MotionBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zento {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

Vec2 reachOf(double radius, double degrees)
{
    return {radius * std::cos(degrees * kDegree), radius * std::sin(degrees * kDegree)};
}

/// White where `isWhite(centre of the sample)`.
template <typename IsWhite>
OwnedPlane<std::uint8_t> painted(int width, int height, IsWhite isWhite)
{
    OwnedPlane<std::uint8_t> plane(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            plane.at(x, y) = isWhite(x + 0.5, y + 0.5) ? 255 : 0;
        }
    }
    return plane;
}

/// An edge at `edge` smeared evenly over `length`, at the centre of sample i.
double ramp(int i, double edge, double length)
{
    return 255 * std::clamp((i + 0.5 - edge) / std::max(length, 1.0) + 0.5, 0.0, 1.0);
}

constexpr double kAngles[] = {0, 13, 33.3, 45, 60, 90, 117, 150, 179};
constexpr double kRadii[] = {0.5, 1.1, 3.3, 7, 12.6, 18};

TEST(DirectionalBlurTest, SmearsEdgesOverTwiceTheRadiusAlongTheAngle)
{
    constexpr int kSize = 90;
    constexpr int kEdge = 45;
    for (const double angle : kAngles) {
        for (const double radius : kRadii) {
            SCOPED_TRACE(testing::Message() << radius << " at " << angle);
            const Vec2 reach = reachOf(radius, angle);
            auto upright = painted(kSize, kSize, [](double x, double) { return x > kEdge; });
            auto level = painted(kSize, kSize, [](double, double y) { return y > kEdge; });
            directionalBlur(upright.view(), reach);
            directionalBlur(level.view(), reach);
            // A step is smeared by half a sample's interpolation more.
            const auto close = [](double length) {
                return 1.5 + 255 * 0.3 / std::max(length, 1.0);
            };
            const double lengthX = 2 * std::abs(reach.x);
            const double lengthY = 2 * std::abs(reach.y);
            for (int i = 0; i < kSize; ++i) {
                ASSERT_NEAR(upright.at(i, 40), ramp(i, kEdge, lengthX), close(lengthX)) << i;
                ASSERT_NEAR(level.at(40, i), ramp(i, kEdge, lengthY), close(lengthY)) << i;
            }
        }
    }
}

TEST(DirectionalBlurTest, KeepsEdgesAlongTheLineSharpAndThinLinesEven)
{
    for (const double angle : kAngles) {
        SCOPED_TRACE(angle);
        const Vec2 along = reachOf(1, angle);
        const auto across = [&](double x, double y) {
            return (y - 60) * along.x - (x - 60) * along.y;
        };
        auto edge = painted(120, 120, [&](double x, double y) { return across(x, y) > 0; });
        OwnedPlane<std::uint8_t> stripe(120, 120);
        for (int y = 0; y < 120; ++y) {
            for (int x = 0; x < 120; ++x) {
                const double d = (x + 0.5 - 60) * along.x + (y + 0.5 - 60) * along.y;
                stripe.at(x, y) = std::uint8_t(255 * std::max(0.0, 1 - std::abs(d) / 2));
            }
        }
        directionalBlur(edge.view(), reachOf(18, angle));
        directionalBlur(stripe.view(), reachOf(18, angle));
        int least = 255;
        int most = 0;
        for (int y = 30; y < 90; ++y) {
            for (int x = 30; x < 90; ++x) {
                if (const double d = across(x + 0.5, y + 0.5); std::abs(d) > 2) {
                    ASSERT_EQ(edge.at(x, y), d > 0 ? 255 : 0) << x << ", " << y;
                }
                const double from = std::abs((x + 0.5 - 60) * along.x + (y + 0.5 - 60) * along.y);
                if (from < 15) {
                    least = std::min<int>(least, stripe.at(x, y));
                    most = std::max<int>(most, stripe.at(x, y));
                }
            }
        }
        // As much as two samples of 36; a ghost or a gap between two pieces would be a peak or a
        // dip.
        EXPECT_NEAR(least, 255 * 2 / 36.0, 3);
        EXPECT_NEAR(most, 255 * 2 / 36.0, 3);
    }
}

TEST(DirectionalBlurTest, KeepsLightAndPlaceAndKnowsNoForwardsOrBackwards)
{
    const auto spot =
        painted(80, 70, [](double x, double y) { return std::hypot(x - 40.5, y - 35.5) < 5; });
    double light = 0;
    for (const std::uint8_t sample : spot.samples()) {
        light += sample;
    }
    for (const double angle : kAngles) {
        for (const double radius : kRadii) {
            SCOPED_TRACE(testing::Message() << radius << " at " << angle);
            auto forwards = spot;
            auto backwards = spot;
            auto mirrored = spot;
            directionalBlur(forwards.view(), reachOf(radius, angle));
            directionalBlur(backwards.view(), reachOf(radius, angle + 180));
            directionalBlur(mirrored.view(), reachOf(radius, -angle));
            double after = 0;
            for (const std::uint8_t sample : forwards.samples()) {
                after += sample;
            }
            EXPECT_NEAR(after / light, 1, 0.01);
            EXPECT_NEAR(centroid(forwards.view()).x, 40.5, 0.05);
            EXPECT_NEAR(centroid(forwards.view()).y, 35.5, 0.05);
            for (int y = 0; y < 70; ++y) {
                for (int x = 0; x < 80; ++x) {
                    ASSERT_NEAR(forwards.at(x, y), backwards.at(x, y), 1);
                    // The spot's middle is the centre of row 35.
                    ASSERT_NEAR(
                        forwards.at(x, y), mirrored.at(x, std::min(70 - y, 69)), y ? 1 : 255);
                }
            }
        }
    }
}

TEST(ZoomBlurTest, SmearsEdgesByTheirDistanceFromTheCentre)
{
    struct Case {
        const char* name;
        double stretch;
        Vec2 center;
    };
    const Case cases[] = {
        {"weak", 0.02, {150, 100}},
        {"strongest of a film", 0.067, {150, 100}},
        {"of a tiny film", 0.2, {150, 100}},
        {"off centre", 0.1, {40.3, 160.7}},
        {"outside", 0.06, {-20, 50}},
    };
    for (const Case& c : cases) {
        for (const int edge : {20, 90, 240}) {
            SCOPED_TRACE(testing::Message() << c.name << ", edge " << edge);
            auto plane = painted(300, 200, [&](double x, double) { return x > edge; });
            zoomBlur(plane.view(), c.center, c.stretch);
            const double length = std::abs(edge - c.center.x) * c.stretch;
            // The smear lies evenly on a logarithmic scale, which shifts it a little.
            const double tolerance = 3 + 255 * (0.3 + 0.05 * length) / std::max(length, 1.0);
            for (int x = 0; x < 300; ++x) {
                ASSERT_NEAR(plane.at(x, 77), ramp(x, edge, length), tolerance) << x;
            }
        }
    }
}

TEST(ZoomBlurTest, KeepsRaysAndTheCentreSharp)
{
    const Vec2 center = {101, 79.5};
    const auto side = [&](double x, double y) {
        return 0.4 * (x - center.x) - 0.9 * (y - center.y);
    };
    auto rays = painted(200, 160, [&](double x, double y) { return side(x, y) > 0; });
    auto checks = painted(200, 160, [](double x, double y) { return (int(x) + int(y)) % 2 == 0; });
    const auto before = checks;
    zoomBlur(rays.view(), center, 0.08);
    zoomBlur(checks.view(), center, 0.08);
    for (int y = 8; y < 152; ++y) { // beyond its edges a plane has no rays
        for (int x = 8; x < 192; ++x) {
            if (const double d = side(x + 0.5, y + 0.5); std::abs(d) > 2) {
                ASSERT_EQ(rays.at(x, y), d > 0 ? 255 : 0) << x << ", " << y;
            }
        }
    }
    EXPECT_GT(std::abs(checks.at(100, 79) - checks.at(101, 79)), 200);
    EXPECT_LT(std::abs(checks.at(10, 10) - checks.at(11, 10)), 60);
}

TEST(MotionBlurTest, AnEvenAreaStaysAsItIsToItsEdges)
{
    for (int value = 0; value < 256; ++value) {
        const OwnedPlane<std::uint8_t> even(41, 23, value);
        for (const Vec2 reach :
             {reachOf(1.08, 20), reachOf(18, 33), reachOf(9.9, 90), Vec2{18, 0}}) {
            auto plane = even;
            directionalBlur(plane.view(), reach);
            ASSERT_EQ(plane.samples(), even.samples()) << value << ", " << reach.x;
        }
        for (const double stretch : {0.02, 0.15, 0.9}) {
            auto plane = even;
            zoomBlur(plane.view(), {20, 9}, stretch);
            ASSERT_EQ(plane.samples(), even.samples()) << value << ", " << stretch;
        }
    }
}

TEST(MotionBlurTest, ThePlanesOfAPictureStayTogether)
{
    // Luma and chroma have an edge at pixel 120, where a chroma sample lies.
    const auto edged = [] {
        Picture picture(200, 100, Layout::Yuv420);
        fill(picture.view(), Color::gray(0));
        for (std::size_t p = 0; p < 3; ++p) {
            const Plane<std::uint8_t> plane = picture.plane(p);
            const PlaneGrid grid = picture.view().grid(p);
            for (int y = 0; y < plane.height; ++y) {
                for (int x = 0; x < plane.width; ++x) {
                    const double place = (x + 0.5 - grid.offset.x) / grid.perPixel.x;
                    plane.row(y)[x] = place > 120 ? 240 : 40;
                }
            }
        }
        return picture;
    };
    const auto blurs = {
        +[](const PictureView& p) { directionalBlur(p, {14, 5}); },
        +[](const PictureView& p) { zoomBlur(p, {20, 50}, 0.28); }};
    for (const auto blur : blurs) {
        Picture picture = edged();
        blur(picture.view());
        for (int x = 50; x < 70; ++x) {
            // A chroma sample lies on the centre of pixel 2 x.
            const int twice = 2 * x;
            EXPECT_NEAR(picture.plane(1).row(25)[x], picture.plane(0).row(50)[twice], 8) << x;
        }
        EXPECT_EQ(picture.plane(0).row(0)[0], 40);
        EXPECT_EQ(picture.plane(2).row(49)[99], 240);
    }
}

TEST(MotionBlurTest, EveryProcessorGivesTheSameBytes)
{
    struct Size {
        int width;
        int height;
    };
    for (const Size size : {Size{1, 1}, Size{3, 40}, Size{37, 5}, Size{131, 67}}) {
        const auto source = noise<std::uint8_t>(size.width, size.height, 256);
        std::vector<std::vector<std::uint8_t>> first;
        forEachTarget([&](const std::string& target) {
            std::vector<std::vector<std::uint8_t>> results;
            for (const Vec2 reach : {reachOf(18, 33), reachOf(2.2, 100), Vec2{0, 7}}) {
                auto plane = source;
                directionalBlur(plane.view(), reach);
                results.push_back(plane.samples());
            }
            for (const double stretch : {0.03, 0.3}) {
                auto plane = source;
                zoomBlur(plane.view(), {size.width * 0.5, size.height * 0.5}, stretch);
                results.push_back(plane.samples());
            }
            if (first.empty()) {
                first = results;
            }
            EXPECT_TRUE(results == first) << target << ", " << size.width << " × " << size.height;
        });
    }
}

} // namespace
} // namespace zento
