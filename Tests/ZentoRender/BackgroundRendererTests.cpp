#include "TestSupport/TemporaryFolder.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoRender/BackgroundRenderer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <numbers>

namespace zento {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 180;

std::uint32_t pixel(const Canvas& canvas, int x, int y)
{
    return canvas.pixels().row(y)[x];
}

int component(std::uint32_t color, int shift)
{
    return static_cast<int>((color >> shift) & 0xff);
}

void expectColor(std::uint32_t actual, std::uint32_t rgb, int tolerance, const char* name)
{
    EXPECT_EQ(component(actual, 24), 255) << name;
    for (const int shift : {16, 8, 0})
        EXPECT_NEAR(component(actual, shift), component(rgb, shift), tolerance)
            << name << std::hex << ": " << actual << " is not " << rgb;
}

TEST(BackgroundRendererTest, ColorsAreReadAsTheyStand)
{
    struct Case {
        const char* hex;
        Color expected;
    };
    const Case cases[] = {
        {"#FF8000", {1, 128 / 255.0, 0, 1}},
        {"xff8000", {1, 128 / 255.0, 0, 1}},
        {"#FFF", {0, 15 / 255.0, 1, 1}},
        {"#10203040", {32 / 255.0, 48 / 255.0, 64 / 255.0, 1}},
        {"#none", {0, 0, 0, 1}},
        {"#", {0, 0, 0, 1}},
        {"", {0, 0, 0, 1}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(BackgroundRenderer::color(c.hex), c.expected) << c.hex;
    EXPECT_EQ(BackgroundRenderer::color("#000000", 0.25).alpha, 0.25);
}

TEST(BackgroundRendererTest, ProbedPixels)
{
    using namespace Background; // NOLINT(google-build-using-namespace): the kinds, in a table
    struct Probe {
        int x;
        int y;
        std::uint32_t rgb;
    };
    struct Case {
        const char* name;
        StyleSpec::Background background;
        std::vector<Probe> probes;
    };
    const int right = kWidth - 1;
    const int bottom = kHeight - 1;
    const Case cases[] = {
        {"one colour",
         zento::Background::Color{"#336699"},
         {{0, 0, 0x336699}, {right, bottom, 0x336699}}},
        {"top to bottom",
         LinearGradient{"#FF0000", "#0000FF"},
         {{5, 0, 0xFF0000}, {5, bottom, 0x0000FF}, {300, 90, 0x7F007F}}},
        {"angle 0 runs to the right",
         Gradient{{"#000000", "#FFFFFF"}, 0},
         {{0, 9, 0x000000}, {right, 170, 0xFFFFFF}, {160, 9, 0x808080}}},
        {"angle 90 runs down, half the longer side from the middle",
         Gradient{{"#FF0000", "#00FF00"}, 90},
         {{9, 90, 0x7F7F00}, {9, 10, 0xBF4000}, {9, 170, 0x40BF00}}},
        {"three colours are spaced evenly",
         Gradient{{"#FF0000", "#00FF00", "#0000FF"}, 0},
         {{0, 0, 0xFF0000}, {160, 0, 0x00FF00}, {right, 0, 0x0000FF}, {80, 0, 0x7F7F00}}},
        {"a gradient of one colour",
         Gradient{{"#123456"}, 33},
         {{0, 0, 0x123456}, {200, 90, 0x123456}}},
        {"the light sits above the middle",
         Radial{"#FFFFFF", "#000000"},
         {{160, 72, 0xFFFFFF}, {160, 108, 0xDBDBDB}}},
        {"blobs of no colour", Blobs{"#101820", {}}, {{60, 45, 0x101820}}},
        {"one blob has two spots",
         Blobs{"#000000", {"#FFFFFF"}},
         {{58, 45, 0xC9C9C9}, {176, 9, 0xCCCCCC}, {right, bottom, 0x000000}}},
        {"the sixth takes the place of the first",
         Blobs{"#000000", {"#000000", "#000000", "#000000", "#000000", "#000000", "#FFFFFF"}},
         {{57, 45, 0xBFBFBF}, {272, 135, 0x000000}}},
        {"dots from the lower left",
         Pattern{"dots", "#FFFFFF", "#000000", 0.25},
         {{0, bottom, 0xFFFFFF}, {45, bottom - 45, 0xFFFFFF}, {22, 157, 0x000000}}},
        {"checker from the lower left",
         Pattern{"checker", "#FFFFFF", "#000000", 0.25},
         {{5, bottom - 5, 0xFFFFFF}, {50, bottom - 5, 0x000000}, {50, bottom - 50, 0xFFFFFF}}},
        {"halftone grows to the lower right",
         Pattern{"halftone", "#FFFFFF", "#000000", 0.25},
         {{270, bottom, 0xFFFFFF}, {270 - 12, bottom, 0xFFFFFF}, {12, 44, 0x000000}}},
        {"an unknown pattern is paper",
         Pattern{"plaid", "#FFFFFF", "#204060", 0.1},
         {{7, 7, 0x204060}}},
        {"an image that is gone", Image{"/nowhere/at-all.png"}, {{9, 9, 0x1A1A1A}}},
    };
    for (const Case& c : cases) {
        const Canvas canvas = BackgroundRenderer::render(c.background, kWidth, kHeight);
        for (const Probe& probe : c.probes)
            expectColor(pixel(canvas, probe.x, probe.y), probe.rgb, 3, c.name);
    }
}

/// The share of ink in a pattern of white on black.
double inkShare(const std::string& kind, double scale, int width = kWidth, int height = kHeight)
{
    const Canvas canvas = BackgroundRenderer::render(
        Background::Pattern{kind, "#FFFFFF", "#000000", scale}, width, height);
    double sum = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            sum += component(pixel(canvas, x, y), 0) / 255.0;
    return sum / (width * height);
}

TEST(BackgroundRendererTest, PatternsHaveTheInkTheirGeometrySays)
{
    // Of a large canvas, the share of one cell of side 1.
    const std::map<std::string, double> shares = {
        {"dots", std::numbers::pi * 0.08 * 0.08},
        {"grid", 1 - 0.98 * 0.98},
        {"diagonal", 0.06 * std::numbers::sqrt2},
        {"hex", 0.03 * 2 / (std::numbers::sqrt3 * 0.5)}, // lines 1/R·2/√3 of length an area
        {"rings", 0.03},
        {"checker", 0.5},
        {"cross", 2 * 0.28 * 0.05 - 0.05 * 0.05},
    };
    for (const auto& [kind, share] : shares)
        EXPECT_NEAR(inkShare(kind, 0.1, 1200, 1000), share, share * 0.06) << kind;
    EXPECT_GT(inkShare("waves", 0.1, 1200, 1000), 0.05 / 0.6);
    EXPECT_LT(inkShare("waves", 0.1, 1200, 1000), 0.05 / 0.6 * 1.2);
}

TEST(BackgroundRendererTest, ATileIsNeverSmallerThanSixPixels)
{
    const Canvas canvas = BackgroundRenderer::render(
        Background::Pattern{"checker", "#FFFFFF", "#000000", 0.0001}, 60, 60);
    for (int i = 0; i < 10; ++i)
        expectColor(
            pixel(canvas, 6 * i + 3, 59 - 3), i % 2 == 0 ? 0xFFFFFF : 0x000000, 0, "smallest tile");
}

TEST(BackgroundRendererTest, AnImageFillsTheCanvasUprightAndIsCropped)
{
    const test::TemporaryFolder folder;
    Canvas image(100, 100); // four quarters: red, green / blue, white
    image.fill(Path().rect({0, 0, 50, 50}), Color{1, 0, 0, 1});
    image.fill(Path().rect({50, 0, 50, 50}), Color{0, 1, 0, 1});
    image.fill(Path().rect({0, 50, 50, 50}), Color{0, 0, 1, 1});
    image.fill(Path().rect({50, 50, 50, 50}), Color{1, 1, 1, 1});
    savePng(image, folder / "quarters.png");
    std::ofstream(folder / "torn.png") << "not a picture";

    const Canvas canvas = BackgroundRenderer::render(
        Background::Image{(folder / "quarters.png").string()}, kWidth, kHeight);
    expectColor(pixel(canvas, 2, 2), 0xFF0000, 1, "top left");
    expectColor(pixel(canvas, kWidth - 3, 2), 0x00FF00, 1, "top right");
    expectColor(pixel(canvas, 150, 80), 0xFF0000, 1, "left and above the middle");
    expectColor(pixel(canvas, 150, 100), 0x0000FF, 1, "left and below the middle");
    expectColor(pixel(canvas, kWidth - 3, kHeight - 3), 0xFFFFFF, 1, "bottom right");

    const Canvas torn = BackgroundRenderer::render(
        Background::Image{(folder / "torn.png").string()}, kWidth, kHeight);
    expectColor(pixel(torn, 100, 100), 0x1A1A1A, 1, "unreadable");
}

} // namespace
} // namespace zento
