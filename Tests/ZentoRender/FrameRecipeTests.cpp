#include "ZentoRender/FrameRecipe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace zento {
namespace {

using CursorSprite::Shape;
using testing::SizeIs;

constexpr OutputSpec kHd = {.width = 1920, .height = 1080, .fps = 60};
constexpr Vec2 kSource = {1920, 1080};
constexpr double kGrid = 1.0 / 1024; // of a recipe's positions

FrameLayers
layers(std::optional<CursorState> cursor, std::vector<Ripple> ripples = {}, double zoom = 1)
{
    const VideoFrame none(YuvPlanes<const std::uint8_t>{}, nullptr, 0, 0);
    return {
        .source = none,
        .camera = {.center = {960, 540}, .zoom = zoom},
        .cursor = std::move(cursor),
        .ripples = std::move(ripples)};
}

StyleSpec fullFrame()
{
    StyleSpec style;
    style.padding = 0; // at zoom 1, a source pixel is a canvas pixel
    return style;
}

Vec2 hotspotOnCanvas(const FrameRecipe::Overlay& overlay)
{
    const Vec2 hotspot = CursorSprite::hotspot(overlay.shape);
    return {overlay.box.x + hotspot.x * overlay.box.w, overlay.box.y + hotspot.y * overlay.box.h};
}

TEST(FrameRecipeTest, PointerSprites)
{
    struct Case {
        const char* name;
        CursorState cursor;
        double cursorScale;
        double zoom;
        Shape shape;
        double height;
        double widthPerHeight;
    };
    const Case cases[] = {
        {"arrow", {{300, 200}, "arrow"}, 2, 1, Shape::Arrow, 56.16, 192.0 / 288},
        {"text", {{300, 200}, "iBeam"}, 2, 1, Shape::IBeam, 56.16, 160.0 / 288},
        {"hand", {{300, 200}, "pointingHand"}, 2, 1, Shape::PointingHand, 56.16, 208.0 / 288},
        {"unknown is the arrow", {{300, 200}, "?"}, 2, 1, Shape::Arrow, 56.16, 192.0 / 288},
        {"half the size", {{300, 200}, "arrow"}, 1, 1, Shape::Arrow, 28.08, 192.0 / 288},
        {"pressed", {{300, 200}, "arrow", 1}, 2, 1, Shape::Arrow, 56.16 * 0.86, 192.0 / 288},
        {"zoomed",
         {{960, 540}, "arrow"},
         2,
         3,
         Shape::Arrow,
         56.16 * std::pow(3, 0.4),
         192.0 / 288},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StyleSpec style = fullFrame();
        style.cursorScale = c.cursorScale;
        const FrameRecipe recipe = frameRecipe(layers(c.cursor, {}, c.zoom), kHd, style, kSource);
        ASSERT_THAT(recipe.overlays, SizeIs(1));
        const FrameRecipe::Overlay& overlay = recipe.overlays.front();
        EXPECT_EQ(overlay.shape, c.shape);
        EXPECT_EQ(overlay.alpha, 1);
        EXPECT_NEAR(overlay.box.h, c.height, kGrid);
        EXPECT_NEAR(overlay.box.w, c.height * c.widthPerHeight, kGrid);
        EXPECT_NEAR(hotspotOnCanvas(overlay).x, c.cursor.pos.x, kGrid);
        EXPECT_NEAR(hotspotOnCanvas(overlay).y, c.cursor.pos.y, kGrid);
    }
}

TEST(FrameRecipeTest, WhatIsInvisibleIsAbsent)
{
    struct Case {
        const char* name;
        std::string cursorStyle;
        std::optional<CursorState> cursor;
        std::size_t overlays;
    };
    const Case cases[] = {
        {"no pointer", "system", std::nullopt, 0},
        {"faded out", "system", CursorState{{1, 1}, "arrow", 0, 0.01}, 0},
        {"all but", "system", CursorState{{1, 1}, "arrow", 0, 0.0101}, 1},
        {"hidden", "hidden", CursorState{{1, 1}, "arrow"}, 0},
        {"a circle and its halo", "circle", CursorState{{1, 1}, "arrow"}, 2},
        {"a faded circle", "circle", CursorState{{1, 1}, "arrow", 1, 0}, 0},
        {"other words take the sprite", "hand", CursorState{{1, 1}, "arrow"}, 1},
    };
    for (const Case& c : cases) {
        StyleSpec style = fullFrame();
        style.cursorStyle = c.cursorStyle;
        EXPECT_THAT(frameRecipe(layers(c.cursor), kHd, style, kSource).overlays, SizeIs(c.overlays))
            << c.name;
    }
}

TEST(FrameRecipeTest, TheCirclePointerSwellsAroundThePointer)
{
    StyleSpec style = fullFrame();
    style.cursorStyle = "circle";
    const CursorState cursor = {{100, 50}, "iBeam", 1, 0.5};
    const auto overlays = frameRecipe(layers(cursor), kHd, style, kSource).overlays;
    ASSERT_THAT(overlays, SizeIs(2));
    const double diameter = 1080 * 0.034 * 1.35;
    EXPECT_EQ(overlays[0].shape, Shape::BlackDisc);
    EXPECT_DOUBLE_EQ(overlays[0].alpha, 0.175);
    EXPECT_NEAR(overlays[0].box.w, diameter * 1.16, kGrid);
    EXPECT_EQ(overlays[1].shape, Shape::WhiteDisc);
    EXPECT_DOUBLE_EQ(overlays[1].alpha, 0.425);
    EXPECT_NEAR(overlays[1].box.w, diameter, kGrid);
    for (const auto& overlay : overlays) {
        EXPECT_NEAR(overlay.box.center().x, 100, kGrid);
        EXPECT_NEAR(overlay.box.center().y, 50, kGrid);
    }
}

TEST(FrameRecipeTest, RipplesLieUnderThePointerAndSpread)
{
    const std::vector<Ripple> ripples = {{{500, 400}, 0}, {{600, 300}, 0.5}};
    const CursorState cursor = {{1, 1}, "arrow"};
    const auto overlays = frameRecipe(layers(cursor, ripples), kHd, fullFrame(), kSource).overlays;
    ASSERT_THAT(overlays, SizeIs(3));
    EXPECT_EQ(overlays[2].shape, Shape::Arrow);
    const double largest = 1080 * 0.055;
    EXPECT_NEAR(overlays[0].box.w, 2 * largest * 0.25, kGrid);
    EXPECT_DOUBLE_EQ(overlays[0].alpha, 0.55);
    EXPECT_NEAR(overlays[1].box.w, 2 * largest * (0.25 + 0.75 * 0.875), kGrid);
    EXPECT_DOUBLE_EQ(overlays[1].alpha, 0.275);
    EXPECT_NEAR(overlays[1].box.center().x, 600, kGrid);
    EXPECT_NEAR(overlays[1].box.center().y, 300, kGrid);

    const auto zoomed =
        frameRecipe(layers({}, {{{960, 540}, 0}}, 2), kHd, fullFrame(), kSource).overlays;
    EXPECT_NEAR(zoomed.at(0).box.w, 2 * largest * 1.3 * 0.25, kGrid);
}

TEST(FrameRecipeTest, ASettledCameraGivesEqualRecipes)
{
    CameraRig rig({{0, {960, 540}, 1}, {0, {400, 300}, 2}}, kSource.x, kSource.y);
    FrameLayers frame = layers(CursorState{{410, 310}, "arrow"});
    FrameRecipe last;
    int lastChange = 0;
    for (int i = 0; i < 1200; ++i) {
        frame.camera = rig.step(i / 60.0, 1 / 60.0);
        const FrameRecipe recipe = frameRecipe(frame, kHd, fullFrame(), kSource);
        if (recipe != last)
            lastChange = i;
        last = recipe;
    }
    EXPECT_GT(lastChange, 60);
    EXPECT_LT(lastChange, 300) << "the springs alone take twice as long to stand still";
    EXPECT_NEAR(last.card.w, 3840, kGrid);
    EXPECT_NEAR(last.card.x, 160, kGrid);
}

TEST(FrameRecipeTest, TheRecipeStaysOnTheExactGeometry)
{
    for (double zoom = 0.3; zoom < 3; zoom += 0.0917) {
        const FrameLayers frame = layers({}, {}, zoom);
        const Card card = cardFor(frame.camera, kHd, StyleSpec{}, kSource);
        const Rect drawn = frameRecipe(frame, kHd, StyleSpec{}, kSource).card;
        EXPECT_NEAR(drawn.x, card.origin.x, kGrid / 2);
        EXPECT_NEAR(drawn.y, card.origin.y, kGrid / 2);
        EXPECT_NEAR(drawn.x + drawn.w, card.origin.x + card.w, kGrid / 2);
        EXPECT_NEAR(drawn.y + drawn.h, card.origin.y + card.h, kGrid / 2);
    }
}

} // namespace
} // namespace zento
