#include "Presenter.h"
#include "SyntheticSource.h"
#include "TestSupport/SamePixels.h"
#include "ZentoRender/FrameCompositor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace zento {
namespace {

constexpr OutputSpec kOutput = {.width = 320, .height = 200, .fps = 60};
constexpr double kMargin = 7; // 0.035 of the height

/// A bubble without any effect.
WebcamPlan plainPlan(double size = 0.4)
{
    WebcamPlan plan;
    plan.size = size;
    plan.ring = false;
    plan.shadow = false;
    return plan;
}

VideoFrame emptyFrame(int width, int height)
{
    const YuvPlanes<const std::uint8_t> planes = {
        .y = {nullptr, width, height, width}, .cb = {}, .cr = {}};
    return {planes, nullptr, 0, 7};
}

TEST(WebcamBubbleTest, SitsInItsCorner)
{
    struct Case {
        const char* corner;
        Vec2 origin;
    };
    const Case cases[] = {
        {"bottomLeft", {kMargin, 200 - kMargin - 50}},
        {"bottomRight", {320 - kMargin - 50, 200 - kMargin - 50}},
        {"topLeft", {kMargin, kMargin}},
        {"topRight", {320 - kMargin - 50, kMargin}},
        {"topright", {320 - kMargin - 50, kMargin}},
        {"somewhere", {kMargin, 200 - kMargin - 50}},
        {"", {kMargin, 200 - kMargin - 50}},
        {"Right", {320 - kMargin - 50, 200 - kMargin - 50}},
    };
    for (const Case& c : cases) {
        WebcamPlan plan = plainPlan(0.25);
        plan.corner = c.corner;
        const auto bubble = webcamBubble({emptyFrame(640, 480), plan}, kOutput);
        ASSERT_TRUE(bubble);
        EXPECT_NEAR(bubble->shape.rect.x, c.origin.x, 1e-9) << c.corner;
        EXPECT_NEAR(bubble->shape.rect.y, c.origin.y, 1e-9) << c.corner;
        EXPECT_EQ(bubble->shape.rect.w, 50) << c.corner;
        EXPECT_EQ(bubble->shape.rect.h, 50) << c.corner;
    }
}

TEST(WebcamBubbleTest, OddPlansAreLimited)
{
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    struct Case {
        const char* name;
        double size;
        double roundness;
        double zoom;
        VideoSize frame;
        double side; // 0 is no bubble
        double radius;
        Rect crop;
    };
    const Case cases[] = {
        {"circle", 0.5, 0.5, 1, {640, 480}, 100, 50, {80, 0, 480, 480}},
        {"rounder than a circle", 0.5, 3, 1, {640, 480}, 100, 50, {80, 0, 480, 480}},
        {"less than square", 0.5, -1, 1, {640, 480}, 100, 0, {80, 0, 480, 480}},
        {"no roundness", 0.5, nan, 1, {640, 480}, 100, 0, {80, 0, 480, 480}},
        {"portrait", 0.5, 0.2, 1, {480, 640}, 100, 20, {0, 80, 480, 480}},
        {"odd", 0.5, 0.2, 1, {101, 77}, 100, 20, {12, 0, 77, 77}},
        {"zoomed in", 0.5, 0.2, 2, {640, 480}, 100, 20, {200, 120, 240, 240}},
        {"zoomed out", 0.5, 0.2, 0.5, {640, 480}, 100, 20, {80, 0, 480, 480}},
        {"no zoom", 0.5, 0.2, nan, {640, 480}, 100, 20, {80, 0, 480, 480}},
        {"down to a pixel", 0.5, 0.2, infinity, {640, 480}, 100, 20, {319.5, 239.5, 1, 1}},
        {"larger than the canvas", 7, 0.2, 1, {640, 480}, 200, 40, {80, 0, 480, 480}},
        {"smaller than a pixel", 0.004, 0.2, 1, {640, 480}, 0, 0, {}},
        {"no size", 0, 0.2, 1, {640, 480}, 0, 0, {}},
        {"negative", -1, 0.2, 1, {640, 480}, 0, 0, {}},
        {"not a size", nan, 0.2, 1, {640, 480}, 0, 0, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WebcamPlan plan = plainPlan(c.size);
        plan.roundness = c.roundness;
        plan.zoom = c.zoom;
        const auto bubble =
            webcamBubble({emptyFrame(c.frame.width, c.frame.height), plan}, kOutput);
        ASSERT_EQ(bubble.has_value(), c.side > 0);
        if (!bubble)
            continue;
        EXPECT_DOUBLE_EQ(bubble->shape.rect.w, c.side);
        EXPECT_DOUBLE_EQ(bubble->shape.radius, c.radius);
        EXPECT_EQ(bubble->crop, c.crop);
    }
}

/// Draws webcam frames over a grey recording.
class WebcamTest : public testing::Test {
protected:
    WebcamTest()
        : m_compositor(kOutput, style(), {32, 20})
    {
    }

    static StyleSpec style()
    {
        StyleSpec style;
        style.fillsCanvas = true;
        style.cornerRadius = 0;
        return style;
    }

    std::shared_ptr<const Picture> compose(std::optional<WebcamLayer> webcam)
    {
        return m_compositor.compose(
            {.source = m_gray, .camera = {{16, 10}, 1}, .webcam = std::move(webcam)});
    }

    VideoFrame m_gray = sampled([](Vec2) { return RgbValue{0.5, 0.5, 0.5}; }, {32, 20});
    FrameCompositor m_compositor;
};

Color colorAt(const Picture& picture, double x, double y)
{
    const auto at = [&](std::size_t p) {
        const Vec2 place = picture.view().grid(p).toPlane(Vec2{x, y});
        return picture.plane(p).row(static_cast<int>(place.y))[static_cast<int>(place.x)];
    };
    return colorOfPlanes({at(0), at(1), at(2)}, Layout::Yuv420);
}

/// Red and green above, blue and white below, in quarters of a size.
Painting quarters(VideoSize size)
{
    return [size](Vec2 p) {
        const bool isLeft = p.x < size.width / 2.0;
        if (p.y < size.height / 2.0)
            return isLeft ? RgbValue{0.8, 0.1, 0.1} : RgbValue{0.1, 0.7, 0.1};
        return isLeft ? RgbValue{0.1, 0.1, 0.8} : RgbValue{0.9, 0.9, 0.9};
    };
}

TEST_F(WebcamTest, ThePictureFillsTheBubbleWhateverItsSizeAndFormat)
{
    struct Case {
        const char* name;
        VideoSize size;
        SourceFormat format;
        double bubble; // of the height
        bool mirror;
        double zoom;
    };
    using enum SourceFormat;
    const Case cases[] = {
        {"landscape", {640, 480}, EightBits420, 0.4, false, 1},
        {"mirrored", {640, 480}, EightBits420, 0.4, true, 1},
        {"portrait, 10 bits", {240, 320}, TenBits422, 0.4, false, 1},
        {"odd", {101, 77}, EightBits420, 0.4, true, 1},
        {"8 × 8", {8, 8}, TenBits422, 0.4, false, 1},
        {"zoomed", {640, 480}, TenBits422, 0.4, true, 2.7},
        {"zoomed beyond what one step enlarges", {640, 480}, EightBits420, 0.9, true, 60},
        {"a bubble beyond what one step reduces", {2880, 2160}, EightBits420, 0.06, true, 1},
        {"as large as the canvas", {640, 480}, EightBits420, 1, false, 1},
    };
    std::uint64_t identity = 1;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WebcamPlan plan = plainPlan(c.bubble);
        plan.corner = "topRight";
        plan.roundness = 0;
        plan.mirror = c.mirror;
        plan.zoom = c.zoom;
        const auto picture =
            compose(WebcamLayer{sampled(quarters(c.size), c.size, c.format, identity++), plan});
        const double side = 200 * c.bubble;
        const double left = 320 - kMargin - side;
        for (const double x : {0.3, 0.7})
            for (const double y : {0.3, 0.7}) {
                if (kMargin + y * side > 200)
                    continue;
                const RgbValue expected = quarters({1, 1})({c.mirror ? 1 - x : x, y});
                const Color actual = colorAt(*picture, left + x * side, kMargin + y * side);
                EXPECT_NEAR(actual.red, expected[0], 0.09) << x << ", " << y;
                EXPECT_NEAR(actual.green, expected[1], 0.09) << x << ", " << y;
                EXPECT_NEAR(actual.blue, expected[2], 0.09) << x << ", " << y;
            }
        // Nothing lies beside it.
        for (const double x : {left - 1.6, left + side + 1.6})
            EXPECT_NEAR(colorAt(*picture, x, kMargin + side / 2).green, 0.5, 0.02);
    }
}

TEST_F(WebcamTest, ThePictureOfAnySizeFillsABubbleOfAnySize)
{
    const Painting light = [](Vec2) { return RgbValue{0.9, 0.8, 0.7}; };
    std::uint64_t identity = 1;
    for (const VideoSize size :
         {VideoSize{1, 1}, VideoSize{2, 1}, VideoSize{3, 300}, VideoSize{9, 9}})
        for (const double bubble : {0.006, 0.02, 0.045, 1.0}) {
            SCOPED_TRACE(
                testing::Message() << size.width << " × " << size.height << ", " << bubble);
            WebcamPlan plan = plainPlan(bubble);
            plan.corner = "topRight";
            plan.blurBackground = true;
            const auto picture = compose(
                WebcamLayer{sampled(light, size, SourceFormat::TenBits422, identity++), plan});
            const double half = 100 * bubble;
            const Color color = colorAt(*picture, 320 - kMargin - half, kMargin + half);
            EXPECT_GT(color.red, bubble < 0.01 ? 0.6 : 0.87); // of a pixel's size, it is mixed
        }
}

TEST_F(WebcamTest, TheShapeIsCutOutAndTheRingLiesAroundIt)
{
    const VideoFrame black = sampled([](Vec2) { return RgbValue{0, 0, 0}; }, {64, 64});
    for (const double roundness : {0.0, 0.22, 0.5}) {
        SCOPED_TRACE(roundness);
        WebcamPlan plan = plainPlan(0.8);
        plan.corner = "topLeft";
        plan.roundness = roundness;
        const double side = 160;
        const double radius = side * roundness;
        const double ring = 0.014 * side;
        const auto count = [&](const Picture& picture, auto isCounted) {
            int samples = 0;
            for (int y = 0; y < 200; ++y)
                for (int x = 0; x < 320; ++x)
                    samples += isCounted(picture.plane(0).row(y)[x]) ? 1 : 0;
            return samples;
        };
        const auto isDark = [](int sample) { return sample < 70; };
        const auto isLight = [](int sample) { return sample > 150; };
        const double area = side * side - (4 - std::numbers::pi) * radius * radius;

        const auto bare = compose(WebcamLayer{black, plan});
        EXPECT_NEAR(count(*bare, isDark), area, 0.01 * area);
        EXPECT_EQ(count(*bare, isLight), 0);

        plan.ring = true;
        const auto ringed = compose(WebcamLayer{black, plan});
        const double outer = (side + 2 * ring) * (side + 2 * ring)
                             - (4 - std::numbers::pi) * (radius + ring) * (radius + ring);
        EXPECT_NEAR(count(*ringed, isDark), area, 0.01 * area) << "the ring covers no picture";
        EXPECT_NEAR(count(*ringed, isLight), outer - area, 0.15 * (outer - area));
        // It is as wide where it is round: on the diagonal through the corner.
        const double inset = kMargin + radius - (radius + ring / 2) * std::sqrt(0.5);
        EXPECT_GT(colorAt(*ringed, inset, inset).green, 0.75);
        EXPECT_GT(colorAt(*ringed, kMargin - ring / 2, kMargin + side / 2).green, 0.75);
    }
}

TEST_F(WebcamTest, TheShadowLiesBelowTheBubble)
{
    const VideoFrame white = sampled([](Vec2) { return RgbValue{1, 1, 1}; }, {64, 64});
    WebcamPlan plan = plainPlan(0.5);
    plan.corner = "topLeft";
    plan.shadow = true;
    const auto picture = compose(WebcamLayer{white, plan});
    const double middle = kMargin + 50;
    EXPECT_EQ(colorAt(*picture, middle, middle).green, 1);
    const double below = colorAt(*picture, middle, kMargin + 100 + 3).green;
    const double above = colorAt(*picture, middle, kMargin - 3).green;
    EXPECT_LT(below, 0.4);
    EXPECT_GT(above, below + 0.08);
    EXPECT_NEAR(colorAt(*picture, 200, 150).green, 0.5, 0.01);
}

TEST_F(WebcamTest, WhatIsReusedIsWhatWouldBeDrawn)
{
    const Picture photograph = presenter();
    const VideoFrame first = webcamFrame(photograph.clone(), 1);
    const VideoFrame second = webcamFrame(Picture(64, 48, Layout::Yuv420), 2);
    WebcamPlan plan = plainPlan();
    WebcamPlan treated = plan;
    treated.blurBackground = true;
    treated.enhance = true;
    WebcamPlan mirrored = treated;
    mirrored.mirror = true;
    struct Step {
        const char* name;
        std::optional<WebcamLayer> webcam;
        bool repeats; // the frame before
    };
    const Step steps[] = {
        {"none", {}, false},
        {"first", WebcamLayer{first, plan}, false},
        {"again, later", WebcamLayer{first.retimed(2), plan}, true},
        {"treated", WebcamLayer{first, treated}, false},
        {"mirrored", WebcamLayer{first, mirrored}, false},
        {"as mirrored", WebcamLayer{first, mirrored}, true},
        {"another frame", WebcamLayer{second, mirrored}, false},
        {"gone", {}, false},
        {"the first again", WebcamLayer{first, treated}, false},
    };
    FrameCompositor plain(kOutput, style(), {32, 20});
    std::shared_ptr<const Picture> before;
    for (const Step& step : steps) {
        const auto picture = compose(step.webcam);
        plain.forgetLast();
        const auto anew =
            plain.compose({.source = m_gray, .camera = {{16, 10}, 1}, .webcam = step.webcam});
        EXPECT_TRUE(test::samePixels(*picture, *anew)) << step.name;
        EXPECT_EQ(picture == before, step.repeats) << step.name;
        before = picture;
    }
}

TEST_F(WebcamTest, EffectsAreThoseOfThePersonInTheBubble)
{
    const VideoFrame frame = webcamFrame(presenter());
    WebcamPlan plan = plainPlan(0.9);
    plan.corner = "topLeft";
    plan.roundness = 0;
    const auto sharp = compose(WebcamLayer{frame, plan});
    plan.mirror = true;
    const auto mirrored = compose(WebcamLayer{frame, plan});
    plan.blurBackground = true;
    const auto blurred = compose(WebcamLayer{frame, plan});
    // The mean difference of luma in a square around a place of the photograph.
    const auto difference = [&](double x, double y) {
        const double scale = 180.0 / 400;
        const int column = static_cast<int>(kMargin + (400 - x) * scale);
        const int row = static_cast<int>(kMargin + y * scale);
        double sum = 0;
        for (int i = row - 6; i < row + 6; ++i)
            for (int j = column - 6; j < column + 6; ++j)
                sum += std::abs(mirrored->plane(0).row(i)[j] - blurred->plane(0).row(i)[j]);
        return sum / 144;
    };
    EXPECT_LT(difference(186, 99), 1) << "face";
    EXPECT_GT(difference(315, 100), 10) << "rocket";
    EXPECT_GT(difference(30, 60), 10) << "flag";
    EXPECT_FALSE(test::samePixels(*sharp, *mirrored));

    // Of 8 pixels nobody can be told.
    const VideoFrame tiny = sampled(quarters({8, 8}), {8, 8}, SourceFormat::EightBits420, 9);
    const auto treated = compose(WebcamLayer{tiny, plan})->clone();
    plan.blurBackground = false;
    EXPECT_TRUE(test::samePixels(treated, *compose(WebcamLayer{tiny, plan})));
}

} // namespace
} // namespace zento
