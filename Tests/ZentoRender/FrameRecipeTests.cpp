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

double widthOf(const FrameRecipe::Pointer& pointer)
{
    const Vec2 units = CursorSprite::size(pointer.shape);
    return pointer.height / units.y * units.x;
}

Vec2 hotspotOnCanvas(const FrameRecipe::Pointer& pointer)
{
    const Vec2 hotspot = CursorSprite::hotspot(pointer.shape);
    return {
        pointer.origin.x + hotspot.x * widthOf(pointer),
        pointer.origin.y + hotspot.y * pointer.height};
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
        ASSERT_TRUE(recipe.pointer);
        EXPECT_EQ(recipe.pointer->shape, c.shape);
        EXPECT_EQ(recipe.pointer->alpha, 1);
        EXPECT_NEAR(recipe.pointer->height, c.height, kGrid);
        EXPECT_NEAR(widthOf(*recipe.pointer), c.height * c.widthPerHeight, kGrid);
        EXPECT_NEAR(hotspotOnCanvas(*recipe.pointer).x, c.cursor.pos.x, kGrid);
        EXPECT_NEAR(hotspotOnCanvas(*recipe.pointer).y, c.cursor.pos.y, kGrid);
    }
}

TEST(FrameRecipeTest, WhatIsInvisibleIsAbsent)
{
    struct Case {
        const char* name;
        std::string cursorStyle;
        double cursorScale;
        std::optional<CursorState> cursor;
        bool hasSprite;
        std::size_t discs;
    };
    const Case cases[] = {
        {"no pointer", "system", 2, std::nullopt, false, 0},
        {"faded out", "system", 2, CursorState{{1, 1}, "arrow", 0, 0.01}, false, 0},
        {"all but", "system", 2, CursorState{{1, 1}, "arrow", 0, 0.0101}, true, 0},
        {"hidden", "hidden", 2, CursorState{{1, 1}, "arrow"}, false, 0},
        {"of no size", "system", 0, CursorState{{1, 1}, "arrow"}, false, 0},
        {"a circle and its halo", "circle", 2, CursorState{{1, 1}, "arrow"}, false, 2},
        {"a faded circle", "circle", 2, CursorState{{1, 1}, "arrow", 1, 0}, false, 0},
        {"other words take the sprite", "hand", 2, CursorState{{1, 1}, "arrow"}, true, 0},
    };
    for (const Case& c : cases) {
        StyleSpec style = fullFrame();
        style.cursorStyle = c.cursorStyle;
        style.cursorScale = c.cursorScale;
        const FrameRecipe recipe = frameRecipe(layers(c.cursor), kHd, style, kSource);
        EXPECT_EQ(recipe.pointer.has_value(), c.hasSprite) << c.name;
        EXPECT_THAT(recipe.discs, SizeIs(c.discs)) << c.name;
    }
}

TEST(FrameRecipeTest, TheCirclePointerSwellsAroundThePointer)
{
    StyleSpec style = fullFrame();
    style.cursorStyle = "circle";
    const CursorState cursor = {{100, 50}, "iBeam", 1, 0.5};
    const auto discs = frameRecipe(layers(cursor), kHd, style, kSource).discs;
    ASSERT_THAT(discs, SizeIs(2));
    const double diameter = 1080 * 0.034 * 1.35;
    EXPECT_EQ(discs[0].color, Color::gray(0, 0.175));
    EXPECT_NEAR(discs[0].radius, diameter * 0.58, kGrid);
    EXPECT_EQ(discs[1].color, Color::gray(1, 0.425));
    EXPECT_NEAR(discs[1].radius, diameter * 0.5, kGrid);
    for (const auto& disc : discs)
        EXPECT_EQ(disc.center, cursor.pos);
}

TEST(FrameRecipeTest, RipplesSpreadAndFade)
{
    const std::vector<Ripple> ripples = {{{500, 400}, 0}, {{600, 300}, 0.5}};
    const auto rings = frameRecipe(layers({}, ripples), kHd, fullFrame(), kSource).rings;
    ASSERT_THAT(rings, SizeIs(2));
    const double largest = 1080 * 0.055;
    EXPECT_NEAR(rings[0].radius, largest * 0.25, kGrid);
    EXPECT_DOUBLE_EQ(rings[0].alpha, 0.55);
    EXPECT_NEAR(rings[1].radius, largest * (0.25 + 0.75 * 0.875), kGrid);
    EXPECT_DOUBLE_EQ(rings[1].alpha, 0.275);
    EXPECT_EQ(rings[1].center, (Vec2{600, 300}));

    const auto zoomed = frameRecipe(layers({}, {{{960, 540}, 0}}, 2), kHd, fullFrame(), kSource);
    EXPECT_NEAR(zoomed.rings.at(0).radius, largest * 1.3 * 0.25, kGrid);
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
    EXPECT_NEAR(last.card.y, -60, kGrid);
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
