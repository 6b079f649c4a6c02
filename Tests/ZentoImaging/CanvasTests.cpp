#include "ZentoCore/Error.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoImaging/ImagingTesting.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <numbers>

namespace zento {
namespace {

std::uint32_t pixel(const Canvas& canvas, int x, int y)
{
    return canvas.pixels().row(y)[x];
}

double inkOf(const Canvas& canvas)
{
    double total = 0;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            total += (pixel(canvas, x, y) >> 24) / 255.0;
        }
    }
    return total;
}

class FolderOfTest {
public:
    FolderOfTest()
        : m_path(
              std::filesystem::temp_directory_path()
              / ("zento-"
                 + std::string(testing::UnitTest::GetInstance()->current_test_info()->name())
                 + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(m_path);
    }
    ~FolderOfTest() { std::filesystem::remove_all(m_path); }
    FolderOfTest(const FolderOfTest&) = delete;
    FolderOfTest& operator=(const FolderOfTest&) = delete;
    std::filesystem::path file(const char* name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

TEST(CanvasDrawing, ShapesCoverTheirArea)
{
    struct Case {
        const char* name = "";
        Path path;
        double area = 0;
    };
    Path twice;
    twice.rect({10, 10, 20, 20}).rect({20, 10, 20, 20});
    const Case cases[] = {
        {"rectangle", Path().rect({10.5, 10, 20, 30}), 600},
        {"circle", Path().circle({50, 50}, 30), 900 * std::numbers::pi},
        {"ellipse", Path().ellipse({20, 30, 60, 40}), 600 * std::numbers::pi},
        {"rounded", Path().roundedRect({10, 10, 60, 40}, 10), 2400 - 100 * (4 - std::numbers::pi)},
        {"radius beyond half", Path().roundedRect({10, 10, 40, 40}, 90), 400 * std::numbers::pi},
        {"union by winding", twice, 600},
        {"triangle", Path().polygon(std::vector<Vec2>{{10, 10}, {50, 10}, {10, 50}}), 800},
    };
    for (const Case& c : cases) {
        Canvas canvas(100, 100);
        canvas.fill(c.path, Color{1, 1, 1});
        EXPECT_NEAR(inkOf(canvas), c.area, 0.01 * c.area) << c.name;
    }
    Canvas holes(100, 100);
    holes.fill(twice, Color{1, 1, 1}, FillRule::EvenOdd);
    EXPECT_NEAR(inkOf(holes), 400, 4);
    Canvas stroked(100, 100);
    stroked.stroke(Path().line({10, 50}, {90, 50}), {6, LineJoin::Round, LineCap::Butt}, Color{});
    EXPECT_NEAR(inkOf(stroked), 480, 5);
}

TEST(CanvasDrawing, GradientsExtendOnlyWhenAsked)
{
    const std::vector<GradientStop> stops{{0, {1, 0, 0}}, {1, {0, 0, 1}}};
    Canvas padded(100, 10);
    padded.fillAll(LinearGradientPaint{{25, 0}, {75, 0}, stops, GradientExtend::Pad});
    EXPECT_EQ(pixel(padded, 5, 5), 0xffff0000U);
    EXPECT_EQ(pixel(padded, 95, 5), 0xff0000ffU);
    EXPECT_NEAR(pixel(padded, 50, 5) >> 16 & 0xff, 126, 3);
    Canvas bare(100, 10);
    bare.fillAll(LinearGradientPaint{{25, 0}, {75, 0}, stops, GradientExtend::None});
    EXPECT_EQ(pixel(bare, 5, 5), 0U);
    Canvas radial(100, 100);
    radial.fillAll(RadialGradientPaint{
        {50, 40},
        0,
        {50, 50},
        50,
        {{0, {1, 1, 1, 0.75}}, {1, {1, 1, 1, 0}}},
        GradientExtend::None});
    EXPECT_NEAR(pixel(radial, 50, 40) >> 24, 0.75 * 255, 4);
    EXPECT_EQ(pixel(radial, 0, 0), 0U);
}

TEST(CanvasDrawing, BlursWithoutLosingInk)
{
    Canvas canvas(120, 120);
    canvas.fill(Path().rect({50, 50, 20, 20}), Color{1, 0.5, 0});
    const double before = inkOf(canvas);
    canvas.blur(8);
    EXPECT_NEAR(inkOf(canvas), before, 0.05 * before);
    EXPECT_LT(pixel(canvas, 60, 60) >> 24, 255U);
    EXPECT_GT(pixel(canvas, 44, 60) >> 24, 10U);
}

TEST(CanvasDrawing, AnEmptySizeIsAnError)
{
    EXPECT_THROW(Canvas(0, 10), Error);
}

constexpr FontRole kRoles[] = {
    FontRole::System, FontRole::Monospaced, FontRole::Serif, FontRole::Rounded};

TEST(CanvasText, MetricsGrowInProportion)
{
    for (const FontRole role : kRoles) {
        const std::string_view text = "Wave To Ääl 12";
        const TextMetrics one = measureText(text, {role, 20, FontWeight::Semibold, 0.4});
        const TextMetrics five = measureText(text, {role, 100, FontWeight::Semibold, 2});
        EXPECT_GT(one.width, 40);
        EXPECT_NEAR(five.width, 5 * one.width, 0.2);
        EXPECT_NEAR(five.ascent, 5 * one.ascent, 0.1);
        EXPECT_NEAR(five.descent, 5 * one.descent, 0.1);
    }
}

TEST(CanvasText, KerningAndWeightChangeTheWidthAsSaid)
{
    const double plain = measureText("abcdef", {FontRole::System, 40}).width;
    const double wide = measureText("abcdef", {FontRole::System, 40, FontWeight::Regular, 3}).width;
    EXPECT_GE(wide - plain, 5 * 3 - 0.1);
    EXPECT_LE(wide - plain, 6 * 3 + 0.1);
    EXPECT_GT(measureText("abcdef", {FontRole::System, 40, FontWeight::Bold}).width, plain);
    // The monospaced role is one, the system role is not.
    const auto width = [](FontRole role, const char* text) {
        return measureText(text, {role, 40}).width;
    };
    EXPECT_NEAR(width(FontRole::Monospaced, "iii"), width(FontRole::Monospaced, "mmm"), 0.05);
    EXPECT_GT(width(FontRole::System, "mmm"), 1.5 * width(FontRole::System, "iii"));
}

TEST(CanvasText, AnEmptyLineKeepsTheFontsHeight)
{
    const TextMetrics empty = measureText("", {FontRole::System, 30});
    const TextMetrics filled = measureText("x", {FontRole::System, 30});
    EXPECT_EQ(empty.width, 0);
    EXPECT_NEAR(empty.ascent, filled.ascent, 0.1);
    EXPECT_NEAR(empty.descent, filled.descent, 0.1);
}

TEST(CanvasText, StandsOnItsBaselineAtSubPixelPlaces)
{
    for (const FontRole role : kRoles) {
        const auto centerOf = [&](double shift) {
            Canvas canvas(200, 100);
            canvas.drawText("Hn", {role, 60, FontWeight::Bold}, {20 + shift, 70}, Color{1, 1, 1});
            OwnedPlane<std::uint8_t> alpha(200, 100);
            for (int y = 0; y < 100; ++y) {
                for (int x = 0; x < 200; ++x) {
                    alpha.at(x, y) = static_cast<std::uint8_t>(pixel(canvas, x, y) >> 24);
                    EXPECT_TRUE(y < 71 || alpha.at(x, y) == 0) << "ink below the baseline";
                }
            }
            EXPECT_GT(inkOf(canvas), 500);
            return centroid(alpha.view()).x;
        };
        EXPECT_NEAR(centerOf(0.4) - centerOf(0), 0.4, 0.05);
    }
}

TEST(ImageFiles, RoundTripKeepsStraightColours)
{
    const FolderOfTest folder;
    Canvas canvas(31, 17);
    canvas.fill(Path().rect({0, 0, 15, 17}), Color{0.2, 0.4, 0.6});
    canvas.fill(Path().rect({15, 0, 16, 17}), Color{1, 0, 0, 0.5});
    savePng(canvas, folder.file("a.png"), 2);
    const Canvas back = loadImage(folder.file("a.png"));
    ASSERT_EQ(back.width(), 31);
    ASSERT_EQ(back.height(), 17);
    EXPECT_EQ(pixel(back, 3, 3), pixel(canvas, 3, 3));
    EXPECT_NEAR(pixel(back, 20, 3) >> 16 & 0xff, pixel(canvas, 20, 3) >> 16 & 0xff, 1);
    EXPECT_EQ(pixel(back, 20, 3) >> 24, pixel(canvas, 20, 3) >> 24);
}

TEST(ImageFiles, CarryTheirDensity)
{
    const auto bytes = encodePng(Canvas(4, 4), 2);
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::size_t at = text.find("pHYs");
    ASSERT_NE(at, std::string::npos);
    const auto byte = [&](std::size_t i) { return unsigned(static_cast<unsigned char>(text[i])); };
    EXPECT_NEAR(double(byte(at + 6) << 8 | byte(at + 7)), 144 / 0.0254, 1);
}

TEST(ImageFiles, AreMadeSmallerButNotLarger)
{
    const FolderOfTest folder;
    Canvas canvas(100, 40);
    canvas.fillAll(Color{0, 1, 0});
    savePng(canvas, folder.file("a.png"));
    EXPECT_EQ(loadImage(folder.file("a.png"), 50).width(), 50);
    EXPECT_EQ(loadImage(folder.file("a.png"), 50).height(), 20);
    EXPECT_EQ(pixel(loadImage(folder.file("a.png"), 50), 49, 19), 0xff00ff00U);
    EXPECT_EQ(loadImage(folder.file("a.png"), 500).width(), 100);
}

TEST(ImageFiles, NameTheFileThatCannotBeRead)
{
    const FolderOfTest folder;
    std::ofstream(folder.file("text.png")) << "no picture";
    for (const char* name : {"text.png", "missing.png"}) {
        try {
            loadImage(folder.file(name));
            ADD_FAILURE() << name;
        } catch (const Error& error) {
            EXPECT_NE(std::string(error.what()).find(name), std::string::npos);
        }
    }
}

} // namespace
} // namespace zento
