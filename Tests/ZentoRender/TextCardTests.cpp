#include "ZentoRender/TextCardLayout.h"
#include "ZentoRender/TextCardPainter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {
namespace {

constexpr OutputSpec kHd = {.width = 1920, .height = 1080, .fps = 60};
constexpr Color kAccent = {1, 0.25, 0}; // red more than anything else
constexpr double kT = 0.082 * 1080;     // the size of most titles
const char* const kDesigns[] = {"classic", "editorial", "mono", "glow", "pill", "underline"};

TextCard cardOf(
    std::string design, std::string title = "Try it", std::optional<std::string> subtitle = "now")
{
    return {
        .title = std::move(title), .subtitle = std::move(subtitle), .design = std::move(design)};
}

Canvas drawn(const TextCardLayout& layout, Ground ground = Ground::Dark)
{
    Canvas canvas(static_cast<int>(layout.place.w), static_cast<int>(layout.place.h));
    draw(layout, kAccent, ground, canvas, {layout.place.x, layout.place.y});
    return canvas;
}

struct Pixel { // premultiplied, [0, 1]
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;
};

bool isAccent(const Pixel& p)
{
    return p.alpha > 0.9 && p.red > 0.9 && p.blue < 0.1;
}
bool isWhite(const Pixel& p)
{
    return p.alpha > 0.9 && p.blue > 0.9;
}
bool isDarkInk(const Pixel& p)
{
    return p.alpha > 0.9 && p.red < 0.12 && p.blue < 0.12;
}
bool isReddish(const Pixel& p)
{
    return p.alpha > 0.02 && p.red > 2 * p.blue;
}
bool isFaint(const Pixel& p)
{
    return p.alpha > 0.06;
}
bool isInk(const Pixel& p)
{
    return p.alpha > 0.5;
}

/// How many pixels of a part of the drawing are so.
int count(const Canvas& canvas, bool (*isSo)(const Pixel&), const Rect& part)
{
    int n = 0;
    const auto pixels = canvas.pixels();
    for (int y = 0; y < canvas.height(); ++y)
        for (int x = 0; x < canvas.width(); ++x) {
            if (x < part.x || y < part.y || x >= part.x + part.w || y >= part.y + part.h)
                continue;
            const std::uint32_t p = pixels.row(y)[x];
            const auto byte = [p](unsigned shift) { return (p >> shift & 0xff) / 255.0; };
            n += isSo({byte(16), byte(8), byte(0), byte(24)}) ? 1 : 0;
        }
    return n;
}

int count(const Canvas& canvas, bool (*isSo)(const Pixel&))
{
    return count(canvas, isSo, canvas.bounds());
}

/// How many pixels along the edges are so.
int countAlongEdges(const Canvas& canvas, bool (*isSo)(const Pixel&))
{
    const double w = canvas.width();
    const double h = canvas.height();
    return count(canvas, isSo, {0, 0, w, 1}) + count(canvas, isSo, {0, h - 1, w, 1})
           + count(canvas, isSo, {0, 0, 1, h}) + count(canvas, isSo, {w - 1, 0, 1, h});
}

TEST(TextCardTest, FadesAndSettles)
{
    const auto scaleAt = [](double t) { return 1 + 0.03 * std::pow(1 - t / 0.9, 3); };
    struct Case {
        const char* name;
        double duration;
        double progress;
        CardAppearance expected;
    };
    const Case cases[] = {
        {"begins", 2, 0, {0, 1.03}},
        {"fades in", 2, 0.0875, {0.5, scaleAt(0.175)}},
        {"is there and settles", 2, 0.225, {1, scaleAt(0.45)}},
        {"has settled", 2, 0.45, {1, 1}},
        {"rests", 2, 0.8, {1, 1}},
        {"fades out", 2, 0.9125, {0.5, 1}},
        {"ends", 2, 1, {0, 1}},
        {"too short for both fades", 0.5, 0.5, {0.25 / 0.35, scaleAt(0.25)}},
        {"no time", 0, 0, {0, 1.03}},
        {"a time that runs backwards", -1, 0.5, {0, 1.03}},
    };
    for (const Case& c : cases) {
        const CardAppearance seen = cardAppearance(c.duration, c.progress);
        EXPECT_NEAR(seen.alpha, c.expected.alpha, 1e-9) << c.name;
        EXPECT_NEAR(seen.scale, c.expected.scale, 1e-9) << c.name;
    }
    EXPECT_EQ(cardAppearance(2, 0.46), cardAppearance(2, 0.8)) << "nothing moves at rest";
}

TEST(TextCardTest, EachDesignHasItsPlaceItsAccentAndItsInk)
{
    for (const char* design : kDesigns) {
        SCOPED_TRACE(design);
        const TextCardLayout layout = layOut(cardOf(design), kHd);
        const Rect& place = layout.place;
        EXPECT_EQ(place.x, std::round(place.x));
        EXPECT_EQ(place.y, std::round(place.y));
        if (layout.design == CardDesign::Editorial || layout.design == CardDesign::Mono) {
            EXPECT_NEAR(place.x, 0.09 * 1920, 0.51);
            EXPECT_NEAR(place.y + place.h, 0.86 * 1080, 0.51);
            EXPECT_EQ(layout.lines[0].baseline.x, layout.lines[1].baseline.x);
        } else {
            EXPECT_NEAR(place.x + place.w / 2, 960, 0.51);
            EXPECT_NEAR(place.y + place.h / 2, 540, 0.51);
            for (const auto& line : layout.lines)
                EXPECT_NEAR(line.baseline.x + line.width / 2, place.w / 2, 1e-9);
        }
        const bool hasAccent = layout.design == CardDesign::Editorial
                               || layout.design == CardDesign::Mono
                               || layout.design == CardDesign::Underline;
        const Canvas canvas = drawn(layout);
        EXPECT_GT(count(canvas, isWhite), 2000);
        EXPECT_EQ(count(canvas, isDarkInk), 0);
        EXPECT_EQ(count(canvas, isAccent) > 100, hasAccent);
        EXPECT_EQ(count(canvas, isReddish) > 4000, layout.design == CardDesign::Glow);
        const bool isFilled = count(canvas, isFaint) > 0.9 * place.w * place.h;
        EXPECT_EQ(isFilled, layout.design == CardDesign::Pill);
        const Canvas onLight = drawn(layout, Ground::Light);
        EXPECT_EQ(count(onLight, isWhite), 0);
        EXPECT_GT(count(onLight, isDarkInk), 2000);
    }
    EXPECT_EQ(cardDesign("neon"), CardDesign::Classic);
}

TEST(TextCardTest, NothingIsCutOff)
{
    for (const char* design : kDesigns)
        for (const char* title :
             {"Ågj|Qy jumpy fjords and glyphs of every kind", "录屏演示 مرحبا e\u0301 👍🏽"}) {
            SCOPED_TRACE(std::string(design) + ", " + title);
            const TextCardLayout layout = layOut(cardOf(design, title, "Ågy, مرحبا 录"), kHd);
            EXPECT_EQ(countAlongEdges(drawn(layout), isInk), 0);
        }
    EXPECT_EQ(countAlongEdges(drawn(layOut(cardOf("glow", "HHHHH"), kHd)), isFaint), 0)
        << "a glow fades out before its edges";
}

TEST(TextCardTest, ThePromptStandsBeforeTheFirstLineAlone)
{
    const TextCardLayout layout =
        layOut(cardOf("mono", "a long title which a terminal has to put on two lines"), kHd);
    ASSERT_EQ(layout.lines.size(), 3U);
    EXPECT_TRUE(layout.lines[0].text.starts_with(kCardPrompt));
    EXPECT_FALSE(layout.lines[1].text.starts_with(kCardPrompt));
    const Canvas canvas = drawn(layout);
    const Rect prompt = {
        0,
        0,
        layout.lines[0].baseline.x + measureText(kCardPrompt, layout.titleFont).width,
        layout.lines[0].baseline.y + 0.25 * layout.titleFont.size};
    EXPECT_GT(count(canvas, isAccent, prompt), 100);
    EXPECT_EQ(count(canvas, isAccent), count(canvas, isAccent, prompt));
    EXPECT_EQ(count(canvas, isWhite, prompt), 0);

    const TextCardLayout word = layOut(cardOf("mono", std::string(60, 'x')), kHd);
    EXPECT_EQ(word.lines[0].text, "\u203A") << "the prompt is a word of its own";
    EXPECT_GT(count(drawn(word), isAccent), 100);
}

TEST(TextCardTest, LeavesRoomBetweenAndBelowItsLines)
{
    const auto heightOf = [](const char* design, std::optional<std::string> subtitle) {
        return layOut(cardOf(design, "Try it", std::move(subtitle)), kHd).place.h;
    };
    const double plain = heightOf("classic", {});
    EXPECT_EQ(heightOf("classic", ""), plain) << "an empty subtitle is none";
    EXPECT_GT(heightOf("classic", "now"), plain + 0.45 * kT);
    EXPECT_NEAR(heightOf("underline", {}), plain + 0.35 * kT, 1) << "its gap ends the card";
    EXPECT_NEAR(heightOf("pill", {}), plain - 16 + 2 * 0.5 * kT, 1);
    const TextCardLayout underlined = layOut(cardOf("underline", "A wider title than that"), kHd);
    ASSERT_TRUE(underlined.bar);
    EXPECT_NEAR(underlined.bar->w, std::max(2.2 * kT, 0.38 * underlined.lines[0].width), 1e-9);
    EXPECT_GT(underlined.bar->y, underlined.lines[0].baseline.y);
    EXPECT_LT(underlined.bar->y + underlined.bar->h, underlined.lines[1].baseline.y - 0.2 * kT);
}

} // namespace
} // namespace zento
