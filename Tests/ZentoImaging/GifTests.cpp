#include "TestSupport/DiskLimits.h"
#include "TestSupport/GifReading.h"
#include "TestSupport/Random.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoImaging/GifWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>

namespace zento {
namespace {

using test::Random;
using test::readGif;
using test::TemporaryFolder;

using Drawing = std::function<PackedRgb(int x, int y)>;

Picture drawn(int width, int height, const Drawing& drawing)
{
    Picture picture(width, height, Layout::Rgb);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const PackedRgb color = drawing(x, y);
            picture.plane(0).row(y)[x] = static_cast<std::uint8_t>(color >> 16);
            picture.plane(1).row(y)[x] = static_cast<std::uint8_t>(color >> 8);
            picture.plane(2).row(y)[x] = static_cast<std::uint8_t>(color);
        }
    }
    return picture;
}

PackedRgb gray(std::uint32_t value)
{
    return packRgb(value, value, value);
}

PackedRgb anyColor(Random& random)
{
    return static_cast<PackedRgb>(random.below(1 << 24));
}

/// The colours of a GIF of one frame, one row high, as a reader that is not ours decodes them.
std::vector<std::uint32_t>
decoded(const LzwImage& image, std::span<const PackedRgb> colors, const std::filesystem::path& path)
{
    const int width = static_cast<int>(image.indices.size());
    GifFile file(path, width, 1, colors);
    file.add({.width = width, .height = 1, .image = image});
    file.finish();
    return readGif(path).frames.at(0).pixels;
}

TEST(Lzw, DecodesToIndicesThatShowEveryPixel)
{
    struct Case {
        const char* name;
        std::size_t colors;
        int pixels;
        std::uint32_t tolerance;
        double staying; // the share of pixels that may stay as they are
    };
    const Case cases[] = {
        {"one pixel", 1, 1, 0, 0},
        {"one colour", 1, 65000, 0, 0.5},
        {"two colours", 2, 5000, 0, 0},
        {"a full small table", 3, 5000, 0, 0.3},
        {"one more", 4, 5000, 0, 0.3},
        {"fifteen", 15, 20000, 0, 0.3},
        {"noise of all colours", 255, 60000, 0, 0},
        {"some of it free", 255, 60000, 200, 0},
        {"much of it free", 255, 60000, 4000, 0.2},
        {"nothing to draw", 8, 60000, 0, 1},
    };
    const TemporaryFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Random random(7);
        std::vector<PackedRgb> colors(c.colors);
        std::ranges::generate(colors, [&] { return anyColor(random); });
        ColorTable table(colors);
        std::vector<LzwPixel> pixels;
        for (int i = 0; i < c.pixels; ++i) {
            const PackedRgb color = anyColor(random);
            pixels.push_back({color, table.nearest(color), random.chance(c.staying)});
        }
        const LzwPalette palette{.colors = colors, .tolerance = c.tolerance};
        const LzwImage image = compressLzw(pixels, palette);
        const auto shown = decoded(image, colors, folder / "image.gif");
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            const std::uint8_t index = image.indices[i];
            if (index == palette.unchanged()) {
                ASSERT_TRUE(pixels[i].mayStay) << i;
                ASSERT_EQ(shown[i], 0U) << i;
                continue;
            }
            ASSERT_EQ(shown[i], colors[index]) << i;
            if (index != pixels[i].nearest || pixels[i].mayStay) {
                ASSERT_LE(colorDistance(colors[index], pixels[i].color), c.tolerance) << i;
            }
        }
    }
}

TEST(Lzw, FreedomMakesNoiseSmall)
{
    Random random(3);
    std::vector<PackedRgb> colors(255);
    std::ranges::generate(colors, [level = 0U]() mutable { return gray(level++); });
    std::vector<LzwPixel> pixels(40000);
    for (LzwPixel& pixel : pixels) {
        pixel.nearest = static_cast<std::uint8_t>(120 + random.below(4));
        pixel.color = gray(pixel.nearest);
    }
    const std::size_t strict = compressLzw(pixels, {.colors = colors}).bytes.size();
    const std::size_t free = compressLzw(pixels, {.colors = colors, .tolerance = 40}).bytes.size();
    EXPECT_LT(free, strict / 3);
}

TEST(PaletteTest, KeepsEveryColourWhereThereIsRoom)
{
    Random random(5);
    std::vector<PackedRgb> pixels(5000);
    std::ranges::generate(
        pixels, [&] { return gray(static_cast<std::uint32_t>(random.below(25) * 10)); });
    const std::vector<PackedRgb> few = choosePalette(pixels, 255);
    EXPECT_EQ(std::set(few.begin(), few.end()), std::set(pixels.begin(), pixels.end()));
    EXPECT_EQ(few.size(), 25U);
    EXPECT_LE(choosePalette(pixels, 9).size(), 9U);
}

/// `delay`: of each picture, by its number.
void write(
    const std::filesystem::path& path,
    std::span<const Picture> pictures,
    const std::function<int(std::size_t)>& delay)
{
    GifWriter writer(path, pictures[0].view(), delay(0));
    for (std::size_t i = 1; i < pictures.size(); ++i) {
        writer.append(pictures[i].view(), delay(i));
    }
    writer.finish();
}

/// A dot of 6 pixels that moves over slow waves with an encoder's noise of one level.
Drawing scene(int step)
{
    auto random = std::make_shared<Random>(static_cast<unsigned>(step));
    return [step, random](int x, int y) {
        const int noise = static_cast<int>(random->below(2));
        const bool isDot = x >= 4 * step && x < 4 * step + 6 && y >= 10 && y < 16;
        return isDot ? packRgb(250, 40, 30)
                     : gray(static_cast<std::uint32_t>(100 + (x + y) / 2 % 40 + noise));
    };
}

constexpr int kWidth = 80; // of the scene
constexpr int kHeight = 48;

void expectShows(const test::ShownGifFrame& frame, const Picture& picture)
{
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const std::uint32_t shown =
                frame.pixels[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)];
            const PackedRgb wanted = packRgb(
                picture.plane(0).row(y)[x], picture.plane(1).row(y)[x], picture.plane(2).row(y)[x]);
            // A level of noise, and up to 2.8 of another colour that will do.
            ASSERT_LE(largestDifference(shown, wanted), 3) << x << ", " << y;
        }
    }
}

TEST(GifWriterTest, ShowsEveryPictureAndTouchesOnlyWhatChanges)
{
    constexpr int kSteps = 12;
    const TemporaryFolder folder;
    std::vector<Picture> pictures;
    for (int step = 0; step < kSteps; ++step) {
        pictures.push_back(drawn(kWidth, kHeight, scene(step)));
    }
    write(folder / "a.gif", pictures, [](std::size_t i) { return 8 + static_cast<int>(i); });

    const test::ReadGif gif = readGif(folder / "a.gif");
    EXPECT_TRUE(gif.playsForEver);
    EXPECT_EQ(gif.width, kWidth);
    EXPECT_EQ(gif.height, kHeight);
    ASSERT_EQ(gif.frames.size(), pictures.size());
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        SCOPED_TRACE(i);
        const test::ShownGifFrame& frame = gif.frames[i];
        EXPECT_EQ(frame.delay, 8 + static_cast<int>(i));
        EXPECT_EQ(frame.disposal, 1);
        expectShows(frame, pictures[i]);
        if (i == 0) {
            continue;
        }
        EXPECT_LE(frame.width * frame.height, 10 * 6) << "the dot, and where it was";
        for (int pixel = 0; pixel < kWidth * kHeight; ++pixel) {
            const int x = pixel % kWidth - 4 * static_cast<int>(i);
            const int y = pixel / kWidth;
            const bool isDotOrWas = x >= -4 && x < 6 && y >= 10 && y < 16;
            const auto at = static_cast<std::size_t>(pixel);
            ASSERT_TRUE(isDotOrWas || frame.pixels[at] == gif.frames[i - 1].pixels[at])
                << "shimmer at " << x << ", " << y;
        }
    }
}

TEST(GifWriterTest, DriftIsFollowed)
{
    // One level every picture: each is within the noise of the one before.
    const TemporaryFolder folder;
    std::vector<Picture> pictures;
    for (std::uint32_t level = 50; level < 120; ++level) {
        pictures.push_back(drawn(20, 10, [&](int, int) { return gray(level); }));
    }
    write(folder / "a.gif", pictures, [](std::size_t) { return 4; });
    const test::ReadGif gif = readGif(folder / "a.gif");
    EXPECT_LE(largestDifference(gif.frames.back().pixels[0], gray(119)), 3);
    EXPECT_EQ(gif.duration(), 4 * 70);
}

TEST(GifWriterTest, EqualPicturesBecomeOneThatLastsAsLong)
{
    const TemporaryFolder folder;
    const Picture first =
        drawn(9, 7, [](int x, int) { return gray(static_cast<std::uint32_t>(x)); });
    const Picture second = drawn(9, 7, [](int, int) { return gray(200); });
    GifWriter writer(folder / "a.gif", first.view(), 9);
    for (int i = 1; i < 5; ++i) {
        writer.append(first.view(), 9);
    }
    writer.append(second.view(), 7);
    writer.append(second.view(), 60000);
    writer.append(second.view(), 60000); // more than a frame can last
    writer.finish();
    const test::ReadGif gif = readGif(folder / "a.gif");
    ASSERT_EQ(gif.frames.size(), 3U);
    EXPECT_EQ(gif.frames[0].delay, 45);
    EXPECT_EQ(gif.duration(), 45 + 7 + 120000);
    EXPECT_EQ(gif.frames[1].pixels, gif.frames[2].pixels);
}

TEST(GifWriterTest, ASceneOfOtherColoursIsShownInThem)
{
    const TemporaryFolder folder;
    const Drawing reds = [](int x, int y) {
        return packRgb(static_cast<std::uint32_t>(x * 4 + y % 4), 0, 0);
    };
    const Drawing blues = [](int x, int y) {
        return packRgb(0, 90, static_cast<std::uint32_t>(x * 4 + y % 4));
    };
    std::vector<Picture> pictures;
    for (const Drawing& drawing : {reds, blues, reds}) {
        pictures.push_back(drawn(64, 32, drawing));
    }
    write(folder / "a.gif", pictures, [](std::size_t) { return 8; });
    const test::ReadGif gif = readGif(folder / "a.gif");
    ASSERT_EQ(gif.frames.size(), 3U);
    for (int x = 0; x < 64; ++x) {
        const auto at = static_cast<std::size_t>(x);
        EXPECT_LE(largestDifference(gif.frames[1].pixels[at], blues(x, 0)), 5) << x;
        EXPECT_LE(largestDifference(gif.frames[2].pixels[at], reds(x, 0)), 5) << x;
    }
}

TEST(GifWriterTest, SaysWhatItCannotWrite)
{
    const TemporaryFolder folder;
    Random random(1);
    const Picture noise = drawn(200, 200, [&](int, int) { return anyColor(random); });
    const auto codeOf = [&](const std::filesystem::path& path) {
        try {
            GifWriter(path, noise.view(), 8).finish();
        } catch (const Error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(path.string()));
            return error.code();
        }
        return 0;
    };
    EXPECT_EQ(codeOf(folder / "missing/a.gif"), ErrorCode::kGifNotStarted);
    const test::FileSizeLimit limit(20000);
    EXPECT_EQ(codeOf(folder / "a.gif"), ErrorCode::kGifFrame);
}

} // namespace
} // namespace zento
