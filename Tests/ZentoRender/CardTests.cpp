#include "ZentoRender/Card.h"

#include <gtest/gtest.h>

namespace zento {
namespace {

constexpr OutputSpec kHd = {.width = 1920, .height = 1080, .fps = 60};
constexpr Vec2 kSource = {1920, 1080};

StyleSpec style(double padding, bool fills = false)
{
    StyleSpec spec;
    spec.padding = padding;
    spec.fillsCanvas = fills;
    return spec;
}

TEST(CardTest, Geometry)
{
    struct Case {
        const char* name;
        Vec2 source;
        StyleSpec style;
        CameraRig::State camera;
        Card expected;
    };
    const Case cases[] = {
        {"the margin is of the height on all sides, the fit by height",
         kSource,
         style(0.06),
         {{960, 540}, 1},
         {{115.2, 64.8}, 0.88, 1689.6, 950.4}},
        {"a wide source leaves larger gaps above and below",
         {3840, 1080},
         style(0.06),
         {{0, 0}, 1},
         {{64.8, 288.225}, 1790.4 / 3840, 1790.4, 503.55}},
        {"a letterboxed card ignores the camera's centre",
         kSource,
         style(0.06),
         {{10, 1070}, 1},
         {{115.2, 64.8}, 0.88, 1689.6, 950.4}},
        {"zoomed far in it follows",
         kSource,
         style(0),
         {{960, 540}, 2},
         {{-960, -540}, 2, 3840, 2160}},
        {"and stops at the far edges",
         kSource,
         style(0),
         {{1900, 1060}, 2},
         {{-1920, -1080}, 2, 3840, 2160}},
        {"and at the near ones", kSource, style(0), {{5, 5}, 2}, {{0, 0}, 2, 3840, 2160}},
        {"filling covers the canvas and crops the excess",
         {2000, 1000},
         style(0.06, /*fills=*/true),
         {{0, 500}, 1},
         {{0, 0}, 1.08, 2160, 1080}},
        {"one axis follows while the other is centred",
         {3840, 1080},
         style(0),
         {{3000, 0}, 1.5},
         {{-960, 135}, 0.75, 2880, 810}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Card card = cardFor(c.camera, kHd, c.style, c.source);
        EXPECT_NEAR(card.origin.x, c.expected.origin.x, 1e-9);
        EXPECT_NEAR(card.origin.y, c.expected.origin.y, 1e-9);
        EXPECT_NEAR(card.scale, c.expected.scale, 1e-12);
        EXPECT_NEAR(card.w, c.expected.w, 1e-9);
        EXPECT_NEAR(card.h, c.expected.h, 1e-9);
    }
}

TEST(CardTest, TheBlendRunsFrom96To104Percent)
{
    struct Case {
        const char* name;
        double zoom;
        double follow; // share of following, [0, 1]
    };
    const Case cases[] = {
        {"below", 0.9, 0},
        {"at 96 %", 0.96, 0},
        {"in the middle", 1.02, 0.84375},
        {"at 104 %", 1.04, 1},
        {"above", 1.1, 1},
    };
    for (const Case& c : cases) {
        const Card card = cardFor({{0, 540}, c.zoom}, kHd, style(0), kSource);
        const double centred = (1920 - card.w) / 2;
        const double followed = 0; // a camera at the left edge holds it on the canvas's edge
        EXPECT_NEAR(card.origin.x, centred + (followed - centred) * c.follow, 1e-9) << c.name;
    }
}

TEST(CardTest, ACardLargerThanTheBlendCoversTheCanvasForEveryCamera)
{
    for (double zoom = 1.04; zoom < 4; zoom += 0.13) {
        for (double x = -500; x < 2500; x += 250) {
            const Card card = cardFor({{x, x / 2}, zoom}, kHd, style(0), kSource);
            EXPECT_LE(card.origin.x, 1e-9);
            EXPECT_LE(card.origin.y, 1e-9);
            EXPECT_GE(card.origin.x + card.w, 1920 - 1e-9);
            EXPECT_GE(card.origin.y + card.h, 1080 - 1e-9);
        }
    }
}

TEST(CardTest, APointOfTheSourceLiesOnTheCard)
{
    const Card card = {.origin = {-10, 20.5}, .scale = 0.5, .w = 960, .h = 540};
    EXPECT_EQ(card.toOutput({100, 50}), (Vec2{40, 45.5}));
}

} // namespace
} // namespace zento
