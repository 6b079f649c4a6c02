#include "TestSupport/Random.h"
#include "ZentoImaging/Convert.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/Screenshot/ShotComposer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>

namespace zento {
namespace {

using ShotComposer::beautify;
using ShotComposer::border;

Canvas drawn(int width, int height, const std::function<std::uint32_t(int, int)>& color)
{
    Canvas canvas(width, height);
    const Plane<std::uint32_t> pixels = canvas.pixels();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixels.row(y)[x] = color(x, y);
    return canvas;
}

std::uint32_t pixel(const Canvas& canvas, int x, int y)
{
    return canvas.pixels().row(y)[x];
}

int channel(std::uint32_t color, int index)
{
    return static_cast<int>(color >> (8 * index) & 0xff);
}

/// What a resampling would blur.
Canvas noise(int width, int height)
{
    test::Random random(4);
    return drawn(width, height, [&](int, int) {
        return 0xff000000U | static_cast<std::uint32_t>(random.below(1 << 24));
    });
}

TEST(ShotComposerTest, TheBorderGrowsWithTheShotFromFortyPixelsOn)
{
    EXPECT_EQ(border({.padding = 0.01}, 1000), 40);
    EXPECT_DOUBLE_EQ(border({.padding = 0.06}, 1000), 96);
    EXPECT_EQ(border({.padding = 0.06, .bare = true}, 1000), 0);
}

TEST(ShotComposerTest, ABareShotIsLeftAlone)
{
    const Canvas image = noise(30, 20);
    const Canvas same = beautify(image, {.bare = true});
    EXPECT_EQ(same.bounds(), image.bounds());
    EXPECT_EQ(pixel(same, 29, 19), pixel(image, 29, 19));
}

TEST(ShotComposerTest, EveryPixelOfTheShotIsKeptWhateverTheMargin)
{
    ShotStyle style = {.background = Background::Color{"#336699"}, .cornerRadius = 10};
    for (const auto& [width, height, padding] :
         {std::tuple{301, 403, 0.0617}, {320, 180, 0.06}, {500, 411, 0.1}, {64, 700, 0.0899}}) {
        SCOPED_TRACE(width);
        style.padding = padding;
        const Canvas image = noise(width, height);
        const Canvas picture = beautify(image, style);
        const double margin = border(style, height);
        EXPECT_EQ(picture.width(), static_cast<int>(width + 2 * margin));
        EXPECT_EQ(picture.height(), static_cast<int>(height + 2 * margin));
        const int left = (picture.width() - width) / 2;
        const int top = (picture.height() - height) / 2;
        EXPECT_NEAR(left, margin, 1);
        EXPECT_NEAR(top, margin, 1);
        for (int y = 10; y < height - 10; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(pixel(picture, x + left, y + top), pixel(image, x, y)) << x << ", " << y;
        EXPECT_EQ(pixel(picture, left, top), pixel(picture, left - 1, top)) << "a round corner";
    }
}

TEST(ShotComposerTest, IsTheFrameAFilmWouldShow)
{
    // A margin of whole pixels: the film's card then has the same place and a scale of 1.
    constexpr int kWidth = 240;
    constexpr int kHeight = 160;
    ShotStyle style;
    style.background = Background::Gradient{{"#204060", "#A06040"}, 30};
    style.padding = 0.1;
    const Canvas image = drawn(kWidth, kHeight, [](int x, int y) {
        const auto wave = [](double phase) {
            return static_cast<std::uint32_t>(std::lround(128 + 90 * std::sin(phase)));
        };
        return 0xff000000U | wave(x * 0.05) << 16 | wave(y * 0.06) << 8 | wave((x + y) * 0.04);
    });
    const Canvas shot = beautify(image, style);

    const OutputSpec output = {.width = kWidth + 80, .height = kHeight + 80, .fps = 1};
    StyleSpec film;
    film.background = style.background;
    film.padding = 40.0 / output.height;
    film.cornerRadius = style.cornerRadius;
    film.shadowOpacity = style.shadowOpacity;
    FrameCompositor compositor(output, film, {kWidth, kHeight});
    const auto source = std::make_shared<const Picture>(toPicture(image, Layout::Yuv420));
    const FrameLayers layers = {
        .source = VideoFrame(source->yuv(), source, 0, 1),
        .camera = {{kWidth / 2.0, kHeight / 2.0}, 1},
        .cursor = {},
        .ripples = {}};
    const Canvas frame = toCanvas(compositor.compose(layers)->view());

    ASSERT_EQ(shot.bounds(), frame.bounds());
    double mean = 0;
    for (int y = 0; y < shot.height(); ++y)
        for (int x = 0; x < shot.width(); ++x)
            for (const int c : {0, 1, 2}) {
                const int difference =
                    std::abs(channel(pixel(shot, x, y), c) - channel(pixel(frame, x, y), c));
                mean += difference / (3.0 * shot.width() * shot.height());
                // Halved chroma bleeds over the card's edge and corners; else rounding alone is
                // left.
                const bool isInside =
                    x > 68 && x < shot.width() - 68 && y > 68 && y < shot.height() - 68;
                ASSERT_LE(difference, isInside ? 4 : 60) << x << ", " << y;
            }
    EXPECT_LT(mean, 1.5);
}

TEST(ShotComposerTest, TransparentPixelsShowTheBackgroundAndTheShadow)
{
    ShotStyle style = {.background = Background::Color{"#FFFFFF"}};
    const Canvas picture =
        beautify(drawn(200, 150, [](int x, int) { return x < 100 ? 0U : 0x80400000U; }), style);
    const std::uint32_t through = pixel(picture, 40 + 60, 40 + 75);
    for (const int c : {0, 1, 2}) {
        EXPECT_LT(channel(through, c), 200) << "no shadow";
        EXPECT_GT(channel(through, c), 130) << "no background";
    }
    // Half of a red of 0x80 over what lies below.
    const std::uint32_t mixed = pixel(picture, 40 + 140, 40 + 75);
    EXPECT_NEAR(channel(mixed, 2), 0x40 + channel(through, 2) * 127 / 255.0, 6);
    EXPECT_NEAR(channel(mixed, 0), channel(through, 0) * 127 / 255.0, 6);
    EXPECT_EQ(channel(mixed, 3), 255);

    style.shadowOpacity = 0;
    const Canvas bright = beautify(drawn(20, 20, [](int, int) { return 0U; }), style);
    EXPECT_EQ(pixel(bright, 50, 50), 0xffffffffU);
}

TEST(ShotComposerTest, WhatCannotBeFramedIsGivenBack)
{
    const Canvas image = noise(50, 30);
    for (const double padding :
         {1e9,
          1e300,
          std::numeric_limits<double>::quiet_NaN(),
          std::numeric_limits<double>::infinity()})
        EXPECT_EQ(beautify(image, {.padding = padding}).bounds(), image.bounds()) << padding;
    EXPECT_EQ(beautify(image, {.padding = -1}).width(), 50 + 80);
    const Canvas dot = beautify(noise(1, 1), {});
    EXPECT_EQ(dot.width(), 81);
}

} // namespace
} // namespace zento
