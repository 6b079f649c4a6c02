#include "TestSupport/Random.h"
#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <set>

namespace zento {
namespace {

using AnnotationRenderer::flatten;
using Kind = Annotation::Kind;

std::uint32_t pixel(const Canvas& canvas, int x, int y)
{
    return canvas.pixels().row(y)[x];
}

bool same(const Canvas& a, const Canvas& b, Vec2 offset = {})
{
    if (b.width() + offset.x > a.width() || b.height() + offset.y > a.height())
        return false;
    for (int y = 0; y < b.height(); ++y) {
        const std::uint32_t* row = b.pixels().row(y);
        const std::uint32_t* in = a.pixels().row(y + static_cast<int>(offset.y));
        if (!std::equal(row, row + b.width(), in + static_cast<int>(offset.x)))
            return false;
    }
    return true;
}

Canvas plain(int width, int height, const Color& color = Color::gray(1))
{
    Canvas canvas(width, height);
    canvas.fillAll(color);
    return canvas;
}

Canvas noise(int width, int height)
{
    test::Random random(11);
    Canvas canvas(width, height);
    const Plane<std::uint32_t> pixels = canvas.pixels();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixels.row(y)[x] = 0xff000000U | static_cast<std::uint32_t>(random.below(1 << 24));
    return canvas;
}

Annotation mark(Kind kind, Vec2 start, Vec2 end = {}, std::string_view color = "#000000")
{
    return {.kind = kind, .start = start, .end = end, .text = "Ag", .colorHex = std::string(color)};
}

Canvas flattened(const Canvas& base, std::vector<Annotation> marks)
{
    return flatten(base, marks);
}

/// How much of a white picture is black, in pixels.
double inkOf(const Canvas& canvas)
{
    double ink = 0;
    for (int y = 0; y < canvas.height(); ++y)
        for (int x = 0; x < canvas.width(); ++x)
            ink += (255 - (pixel(canvas, x, y) & 0xff)) / 255.0;
    return ink;
}

std::vector<Annotation> oneOfEach()
{
    std::vector<Annotation> marks;
    marks.reserve(kAllAnnotationKinds.size());
    for (const Kind kind : kAllAnnotationKinds)
        marks.push_back(mark(kind, {40, 30}, {150, 110}, "#FF9500"));
    marks[5].points = {{30, 20}, {90, 100}, {160, 40}};
    return marks;
}

TEST(AnnotationRendererTest, WithoutMarksTheImageIsCopied)
{
    const Canvas base = noise(37, 21);
    const Canvas copy = flatten(base, {});
    EXPECT_EQ(copy.width(), 37);
    EXPECT_TRUE(same(base, copy));
}

TEST(AnnotationRendererTest, ACropCutsWholePixelsOrIsIgnored)
{
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kHuge = std::numeric_limits<double>::infinity();
    struct Case {
        const char* name;
        Rect crop;
        Rect kept;
    };
    const Case cases[] = {
        {"whole pixels", {10, 5, 20, 8}, {10, 5, 20, 8}},
        {"less than a pixel", {10.3, 5.3, 0.4, 0.4}, {10, 5, 1, 1}},
        {"expanded", {10.5, 5.5, 20, 8}, {10, 5, 21, 9}},
        {"beyond the image", {50, 30, 100, 100}, {50, 30, 14, 10}},
        {"from a corner back", {30, 13, -20, -8}, {10, 5, 20, 8}},
        {"outside", {100, 5, 20, 8}, {0, 0, 64, 40}},
        {"nothing", {10, 5, 0, 0}, {0, 0, 64, 40}},
        {"not a number", {kNone, 5, 20, 8}, {0, 0, 64, 40}},
        {"endless", {0, 0, kHuge, 8}, {0, 0, 64, 40}},
    };
    const Canvas base = noise(64, 40);
    for (const Case& c : cases) {
        const Canvas cropped = flatten(base, {}, c.crop);
        EXPECT_EQ(cropped.bounds(), (Rect{0, 0, c.kept.w, c.kept.h})) << c.name;
        EXPECT_TRUE(same(base, cropped, {c.kept.x, c.kept.y})) << c.name;
    }
}

TEST(AnnotationRendererTest, MarksStayWhereTheyAreInTheImageThatIsCropped)
{
    const Canvas base = noise(200, 140);
    for (const Annotation& each : oneOfEach()) {
        const Canvas whole = flattened(base, {each});
        const std::vector marks = {each};
        const Canvas cropped = flatten(base, marks, Rect{20, 10, 160, 120});
        EXPECT_TRUE(same(whole, cropped, {20, 10})) << name(each.kind);
        EXPECT_FALSE(same(base, whole)) << name(each.kind);
    }
}

TEST(AnnotationRendererTest, StrokesAreAsWideAsTheImageAsks)
{
    for (const auto& [height, width, expected] :
         {std::tuple{200, 1.0, 4.0}, {1040, 1.5, 6.0}, {2600, 1.0, 10.0}, {200, 0.0, 0.0}}) {
        SCOPED_TRACE(height);
        Annotation line = mark(Kind::Line, {-50, 100}, {200, 100});
        line.width = width;
        const Canvas column = flatten(plain(80, height), std::vector{line}, Rect{40, 0, 1, 1e5});
        EXPECT_NEAR(inkOf(column), expected, 0.02);

        Annotation dot = {
            .kind = Kind::Pen, .colorHex = "#000000", .width = width, .points = {{40, 100}}};
        const double radius = expected / 2;
        EXPECT_NEAR(
            inkOf(flattened(plain(80, height), {dot})), std::numbers::pi * radius * radius, 0.6);
    }
}

TEST(AnnotationRendererTest, ABlurIsAMosaicOfTheInput)
{
    const Canvas base = noise(160, 120);
    const Canvas hidden = flattened(base, {mark(Kind::Blur, {10, 10}, {110, 110})});
    // 12 × 12 cells of 8 and a third.
    std::set<std::uint32_t> colors;
    for (int row = 0; row < 12; ++row)
        for (int column = 0; column < 12; ++column) {
            const int left = 10 + static_cast<int>(std::ceil(column * 100 / 12.0));
            const int top = 10 + static_cast<int>(std::ceil(row * 100 / 12.0));
            for (int y = top; y < top + 8; ++y)
                for (int x = left; x < left + 8; ++x)
                    ASSERT_EQ(pixel(hidden, x, y), pixel(hidden, left, top)) << x << ", " << y;
            colors.insert(pixel(hidden, left, top));
        }
    EXPECT_GT(colors.size(), 100U);
    EXPECT_EQ(pixel(hidden, 9, 50), pixel(base, 9, 50));

    // The mean of what it hides stays; the noise does not.
    double mean = 0;
    for (const std::uint32_t color : colors)
        mean += (color & 0xff) / static_cast<double>(colors.size());
    EXPECT_NEAR(mean, 127.5, 4);

    const Canvas both = flattened(
        base, {mark(Kind::Blur, {10, 10}, {110, 110}), mark(Kind::Blur, {60, 60}, {150, 110})});
    const Canvas second = flattened(base, {mark(Kind::Blur, {60, 60}, {150, 110})});
    const Rect area = {60, 60, 90, 50};
    EXPECT_TRUE(same(flatten(both, {}, area), flatten(second, {}, area))) << "compounded";
    EXPECT_TRUE(same(base, flattened(base, {mark(Kind::Blur, {10, 10}, {11, 110})})));
    EXPECT_TRUE(same(base, flattened(base, {mark(Kind::Blur, {-90, 10}, {2, 110})})));
}

TEST(AnnotationRendererTest, SpotlightsLeaveThemselvesOutOfOneDimming)
{
    const Canvas lit = flattened(
        plain(200, 100),
        {mark(Kind::Spotlight, {20, 20}, {120, 80}), mark(Kind::Spotlight, {80, 30}, {180, 90})});
    const auto level = [&](int x, int y) { return static_cast<int>(pixel(lit, x, y) & 0xff); };
    EXPECT_EQ(level(50, 50), 255);
    EXPECT_EQ(level(150, 60), 255);
    EXPECT_NEAR(level(5, 5), 127.5, 1);
    EXPECT_NEAR(level(100, 55), 127.5, 1) << "where both overlap";
    EXPECT_NEAR(level(21, 21), 127.5, 2) << "a corner is round";
}

TEST(AnnotationRendererTest, AHighlightDarkensOnly)
{
    const Annotation yellow = mark(Kind::Highlight, {0, 0}, {20, 20}, "#FFCC00");
    // 0.6 of white and 0.4 of #FFCC00 times white.
    const std::uint32_t onWhite = pixel(flattened(plain(20, 20), {yellow}), 9, 9);
    EXPECT_EQ(onWhite >> 16, 0xffffU);
    EXPECT_NEAR(onWhite >> 8 & 0xff, 0xeb, 1);
    EXPECT_NEAR(onWhite & 0xff, 0x99, 1);
    EXPECT_EQ(pixel(flattened(plain(20, 20, Color::gray(0)), {yellow}), 9, 9), 0xff000000U);
}

TEST(AnnotationRendererTest, ABadgesDigitsAreSeenOnEveryColour)
{
    for (const std::string_view color : AnnotationRenderer::kPalette) {
        SCOPED_TRACE(color);
        Annotation badge = mark(Kind::Badge, {30, 30}, {}, color);
        badge.number = 8;
        const Canvas canvas = flattened(plain(60, 60, {0.2, 0.5, 0.8}), {badge});
        int black = 0;
        int white = 0;
        for (int y = 20; y < 40; ++y)
            for (int x = 20; x < 40; ++x) {
                black += pixel(canvas, x, y) == 0xff000000U ? 1 : 0;
                white += pixel(canvas, x, y) == 0xffffffffU ? 1 : 0;
            }
        const bool isLight = AnnotationRenderer::luminance(color) > 0.6;
        EXPECT_GT(isLight ? black : white, 20);
        EXPECT_GT(pixel(canvas, 30, 48) & 0xff, 0U);
        EXPECT_LT(pixel(canvas, 30, 46) & 0xff, 0xc0U) << "a shadow below";
    }
    EXPECT_NEAR(AnnotationRenderer::luminance("#FFFFFF"), 1, 1e-12);
    EXPECT_NEAR(AnnotationRenderer::luminance("#00FF00"), 0.587, 1e-12);
}

TEST(AnnotationRendererTest, ATextHangsFromItsStart)
{
    Annotation text = mark(Kind::Text, {20, 40}, {}, "#FFFFFF"); // 28 pixels
    const auto inkRows = [&](const char* words) {
        text.text = words;
        const Canvas canvas = flattened(plain(300, 140), {text});
        std::pair rows = {140, 0};
        for (int y = 0; y < 140; ++y)
            for (int x = 0; x < 300; ++x)
                if ((pixel(canvas, x, y) & 0xff) < 240)
                    rows = {std::min(rows.first, y), std::max(rows.second, y)};
        return rows;
    };
    for (const char* words : {"Ag", "看看", "انظر", "👀", "a\nb\tc"}) {
        const auto [first, last] = inkRows(words);
        EXPECT_GE(first, 40 - 8) << words; // some scripts are tall
        EXPECT_LE(last, 40 + 28 + 6) << words;
        EXPECT_GT(last - first, 12) << words; // white on white: the outline is seen
    }
    text.text.clear();
    EXPECT_TRUE(same(plain(90, 90), flattened(plain(90, 90), {text})));
}

TEST(AnnotationRendererTest, AbsurdPlacesHarmNothing)
{
    const Canvas base = plain(120, 90);
    const Annotation good = mark(Kind::Line, {10, 10}, {100, 80});
    const Canvas expected = flattened(base, {good});
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        for (Annotation each : oneOfEach()) {
            each.start.x = bad;
            EXPECT_TRUE(same(expected, flattened(base, {each, good}))) << name(each.kind);
            each.start.x = 0;
            each.width = bad;
            EXPECT_TRUE(same(expected, flattened(base, {each, good}))) << name(each.kind);
        }
    }
    for (Annotation each : oneOfEach()) {
        each.width = 1e300;
        each.start = {-1e300, 1e300};
        flattened(base, {each, good}); // not to crash is enough
        each.width = -3;
        EXPECT_EQ(flattened(base, {each, good}).width(), 120);
    }
    EXPECT_EQ(flattened(plain(1, 1), oneOfEach()).width(), 1);
}

TEST(AnnotationRendererTest, APngCarriesTheDisplaysDensity)
{
    const Canvas image = plain(3, 2);
    for (const auto& [scale, density] :
         {std::pair{1.0, 72}, {2.0, 144}, {0.5, 72}, {double(NAN), 72}}) {
        const std::vector<std::byte> png = AnnotationRenderer::pngData(image, scale);
        const std::string text(reinterpret_cast<const char*>(png.data()), png.size());
        const std::size_t chunk = text.find("pHYs");
        ASSERT_NE(chunk, std::string::npos);
        int perMetre = 0;
        for (std::size_t i = 0; i < 4; ++i)
            perMetre = perMetre * 256 + std::to_integer<int>(png[chunk + 4 + i]);
        EXPECT_NEAR(perMetre * 0.0254, density, 0.03);
    }
}

} // namespace
} // namespace zento
