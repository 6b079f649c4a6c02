#include "Presenter.h"
#include "ZentoImaging/Scale.h"
#include "ZentoRender/PersonMatte.h"
#include "ZentoRender/WebcamEffects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

/// What lies in `crop`, times `scale`.
Picture cropped(const Picture& picture, const Rect& crop, double scale)
{
    const Rect all = {0, 0, crop.w * scale, crop.h * scale};
    Picture result(static_cast<int>(all.w), static_cast<int>(all.h), Layout::Yuv420);
    const PicturePlacement placement = {{-crop.x * scale, -crop.y * scale}, scale, scale};
    PictureScaler scaler;
    drawScaled(scaler, picture.view(), placement, result.view(), all);
    return result;
}

double mean(const Plane<const std::uint8_t>& plane)
{
    double sum = 0;
    for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < plane.width; ++x)
            sum += plane.row(y)[x];
    return sum / plane.width / plane.height;
}

TEST(PersonMatteTest, IsBrightOnThePersonAtThePicturesOwnSize)
{
    const Picture photograph = presenter();
    struct Case {
        const char* name;
        Rect crop;
        double scale;
    };
    const Case cases[] = {
        {"as it is", {0, 0, 400, 400}, 1},
        {"the network's size", {0, 0, 400, 400}, 0.72},
        {"large and odd", {0, 0, 400, 399}, 1.77},
        {"small", {0, 0, 400, 400}, 0.25},
        {"landscape", {0, 0, 400, 250}, 1.3},
        {"portrait", {60, 0, 230, 400}, 1.3},
    };
    PersonMatte subject;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Picture picture = cropped(photograph, c.crop, c.scale);
        const auto matte = subject.matte(picture.view());
        ASSERT_TRUE(matte);
        ASSERT_EQ(matte->width, picture.width());
        ASSERT_EQ(matte->height, picture.height());
        const auto at = [&](double x, double y) {
            return int{
                matte->plane().row(int((y - c.crop.y) * c.scale))[int((x - c.crop.x) * c.scale)]};
        };
        EXPECT_GT(at(186, 99), 230) << "face";
        EXPECT_GT(at(170, 240), 230) << "chest";
        EXPECT_LT(at(70, 10), 25) << "top left";
        EXPECT_LT(at(280, 10), 25) << "top right";
        EXPECT_LT(at(275, 120), 60) << "beside the face";
    }
}

TEST(PersonMatteTest, WithoutAPersonThereIsLittleAndFromNextToNothingNone)
{
    Picture gradient(320, 240, Layout::Yuv420);
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 320; ++x)
            gradient.plane(0).row(y)[x] = static_cast<std::uint8_t>(40 + x / 4 + y / 4);
    PersonMatte subject;
    const auto matte = subject.matte(std::as_const(gradient).view());
    ASSERT_TRUE(matte);
    EXPECT_LT(mean(matte->plane()), 40);

    EXPECT_FALSE(subject.matte(Picture(8, 8, Layout::Yuv420).view()));
    EXPECT_FALSE(subject.matte(Picture(8, 200, Layout::Yuv420).view()));
    EXPECT_FALSE(subject.matte(Picture(200, 8, Layout::Yuv420).view()));
    EXPECT_TRUE(subject.matte(Picture(9, 9, Layout::Yuv420).view()));
    EXPECT_TRUE(subject.matte(Picture(9, 400, Layout::Yuv420).view()));
}

TEST(PersonMatteTest, RemembersNothingOfThePictureBefore)
{
    const Picture photograph = presenter();
    PersonMatte fresh;
    PersonMatte used;
    (void)used.matte(Picture(160, 100, Layout::Yuv420).view());
    (void)used.matte(Picture(400, 400, Layout::Yuv420).view());
    EXPECT_TRUE(fresh.matte(photograph.view())->samples == used.matte(photograph.view())->samples);
}

/// How much neighbouring rows and columns differ within a square of the luma.
double detail(const Picture& picture, int left, int top, int side)
{
    double sum = 0;
    for (int y = top; y < top + side; ++y)
        for (int x = left; x < left + side; ++x) {
            const auto* row = picture.plane(0).row(y);
            sum +=
                std::abs(row[x] - row[x + 1]) + std::abs(row[x] - picture.plane(0).row(y + 1)[x]);
        }
    return sum / side / side;
}

TEST(WebcamEffectsTest, TheBackgroundIsBlurredAndThePersonIsNot)
{
    const Picture before = presenter();
    Picture after = before.clone();
    PersonMatte subject;
    const auto matte = subject.matte(before.view());
    ASSERT_TRUE(matte);
    WebcamEffects::blurBackground(after.view(), *matte, {}, 0.035 * 400);
    EXPECT_GT(detail(after, 166, 80, 40), 0.97 * detail(before, 166, 80, 40)) << "face";
    EXPECT_LT(detail(after, 290, 30, 50), 0.25 * detail(before, 290, 30, 50)) << "rocket";
    EXPECT_LT(detail(after, 5, 30, 50), 0.25 * detail(before, 5, 30, 50)) << "flag";

    // A matte may lie anywhere on the picture, mirrored as well.
    Matte right = {.width = 10, .height = 10, .samples = std::vector<std::uint8_t>(100)};
    for (int i = 0; i < 100; ++i)
        right.samples[std::size_t(i)] = i % 10 < 5 ? 0 : 255;
    Picture mirrored = before.clone();
    WebcamEffects::blurBackground(mirrored.view(), right, {{400, 0}, -40, 40}, 14);
    EXPECT_EQ(detail(mirrored, 20, 100, 100), detail(before, 20, 100, 100)) << "left is kept";
    EXPECT_LT(detail(mirrored, 270, 100, 100), 0.6 * detail(before, 270, 100, 100));
}

/// What `enhance` says it does, in R'G'B' and without limits.
Color enhancedColor(const Color& color)
{
    const auto each = [](Color c, auto change) {
        const double luma = 0.2126 * c.red + 0.7152 * c.green + 0.0722 * c.blue;
        return Color{change(c.red, luma), change(c.green, luma), change(c.blue, luma)};
    };
    const Color controlled = each(color, [](double v, double luma) {
        return (luma + 1.1 * (v - luma) - 0.5) * 1.06 + 0.5 + 0.02;
    });
    const auto [least, most] = std::minmax({controlled.red, controlled.green, controlled.blue});
    const double gain = 1 + 0.18 * (1 - (most - least));
    return each(controlled, [&](double v, double luma) { return luma + gain * (v - luma); });
}

TEST(WebcamEffectsTest, EnhancingLiftsColours)
{
    struct Case {
        const char* name;
        Color color;
    };
    const Case cases[] = {
        {"middle grey", Color::gray(0.5)},
        {"dark grey", Color::gray(0.2)},
        {"skin", {0.75, 0.6, 0.5}},
        {"a pale blue wall", {0.6, 0.65, 0.7}},
        {"a strong red", {0.7, 0.3, 0.3}},
        {"green", {0.3, 0.6, 0.25}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Picture picture(16, 10, Layout::Yuv420);
        fill(picture.view(), c.color);
        WebcamEffects::enhance(picture.view());
        const Color expected = enhancedColor(c.color);
        const Color actual = colorOfPlanes(
            {picture.plane(0).row(9)[15], picture.plane(1).row(4)[7], picture.plane(2).row(4)[7]},
            Layout::Yuv420);
        // Chroma of 8 bits is good to 1/120 in blue, before and after.
        EXPECT_NEAR(actual.red, expected.red, 0.015);
        EXPECT_NEAR(actual.green, expected.green, 0.015);
        EXPECT_NEAR(actual.blue, expected.blue, 0.02);
    }
    Picture extremes(16, 10, Layout::Yuv420);
    fill(extremes.view(), Color::gray(1));
    WebcamEffects::enhance(extremes.view());
    EXPECT_EQ(extremes.plane(0).row(3)[3], 235);
    fill(extremes.view(), {0, 0, 1});
    WebcamEffects::enhance(extremes.view());
    EXPECT_EQ(extremes.plane(1).row(3)[3], 240);
}

} // namespace
} // namespace zento
