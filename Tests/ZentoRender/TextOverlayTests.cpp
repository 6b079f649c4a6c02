#include "ZentoRender/DrawingCache.h"
#include "ZentoRender/TextOverlay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

using Kind = TextOverlay::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr OutputSpec kHd = {.width = 1920, .height = 1080, .fps = 60};
constexpr Kind kKinds[] = {Kind::Keystroke, Kind::Caption, Kind::RaisedCaption, Kind::Chapter};

TEST(TextOverlayTest, WhatIsSeen)
{
    const FrameText key = {"K", 1};
    const FrameText words = {"W", 0.5};
    const FrameText chapter = {"C", 0.9995};
    const TextOverlay seenKey = {Kind::Keystroke, "K", 1};
    EXPECT_THAT(textOverlays({}, {}, {}), IsEmpty());
    EXPECT_THAT(
        textOverlays(key, words, chapter),
        ElementsAre(
            seenKey,
            TextOverlay{Kind::RaisedCaption, "W", 0.5},
            TextOverlay{Kind::Chapter, "C", 1}))
        << "from bottom to top, and what is all but opaque is opaque";
    EXPECT_THAT(textOverlays({}, words, {}), ElementsAre(TextOverlay{Kind::Caption, "W", 0.5}));
    EXPECT_THAT(
        textOverlays(FrameText{"K", 0}, words, FrameText{"C", 0.01}),
        ElementsAre(TextOverlay{Kind::RaisedCaption, "W", 0.5}))
        << "a key that is not seen any more still raises";
}

/// The part of a drawing that is lighter than its box: the text.
Rect inkOf(const TextBox& box)
{
    Canvas canvas(static_cast<int>(box.place.w), static_cast<int>(box.place.h));
    draw(box, canvas, {box.place.x, box.place.y});
    Vec2 low = {1e9, 1e9};
    Vec2 high = {-1e9, -1e9};
    for (int y = 0; y < canvas.height(); ++y)
        for (int x = 0; x < canvas.width(); ++x) {
            if ((std::as_const(canvas).pixels().row(y)[x] >> 8 & 0xff) < 60)
                continue;
            low = {std::min<double>(low.x, x), std::min<double>(low.y, y)};
            high = {std::max<double>(high.x, x + 1), std::max<double>(high.y, y + 1)};
        }
    return {low.x, low.y, high.x - low.x, high.y - low.y};
}

TEST(TextOverlayTest, TextOfAnyScriptLiesInsideAndInTheMiddleOfItsBox)
{
    const char* const texts[] = {
        "Ågy Qj|",
        "窗口设置",
        "مرحبا بكم",
        "e\u0301n\u0303Z\u0302",
        "नमस्ते",
        "👍🏽👩‍👩‍👧",
        "⌘⇧⏎",
        "a\nb\tc"};
    for (const Kind kind : kKinds)
        for (const char* text : texts) {
            SCOPED_TRACE(text + std::to_string(static_cast<int>(kind)));
            const TextBox box = textBox(kind, text, kHd);
            EXPECT_EQ(box.place.x, std::round(box.place.x));
            EXPECT_EQ(box.place.y, std::round(box.place.y));
            EXPECT_EQ(box.lines.size(), 1U);
            const Rect ink = inkOf(box);
            const double size = box.font.size;
            EXPECT_GT(ink.x, 0.6 * size);
            EXPECT_GT(ink.y, 0.25 * size);
            EXPECT_LT(ink.y + ink.h, box.place.h - 0.25 * size);
            EXPECT_NEAR(ink.x + ink.w / 2, box.place.w / 2, 0.12 * size);
            EXPECT_NEAR(ink.y + ink.h / 2, box.place.h / 2, 0.3 * size);
        }
}

TEST(TextOverlayTest, BoxesHaveTheirPlacesAtEverySize)
{
    for (const OutputSpec& output :
         {kHd, OutputSpec{3840, 2160, 60}, OutputSpec{1080, 1920, 30}, OutputSpec{320, 180, 30}}) {
        SCOPED_TRACE(output.width);
        const auto place = [&](Kind kind) { return textBox(kind, "Ctrl", output).place; };
        const double w = output.width;
        const double h = output.height;
        for (const Kind kind : {Kind::Keystroke, Kind::Caption, Kind::RaisedCaption})
            EXPECT_NEAR(place(kind).x + place(kind).w / 2, w / 2, 0.51);
        EXPECT_NEAR(place(Kind::Keystroke).y + place(Kind::Keystroke).h, h - 0.055 * h, 0.51);
        EXPECT_NEAR(place(Kind::Caption).y + place(Kind::Caption).h, h - 0.055 * h, 0.51);
        EXPECT_NEAR(place(Kind::Chapter).x, 0.035 * w, 0.51);
        EXPECT_NEAR(place(Kind::Chapter).y, 0.045 * h, 0.51);
        const Rect raised = place(Kind::RaisedCaption);
        EXPECT_LE(raised.y + raised.h, place(Kind::Keystroke).y) << "it makes room for the key";
        EXPECT_NEAR(raised.y + raised.h, h - 0.125 * h, 0.01 * h + 1);
        const TextBox hd = textBox(Kind::Caption, "Ctrl", kHd);
        EXPECT_NEAR(place(Kind::Caption).w, hd.place.w * h / 1080, 2);
        EXPECT_NEAR(place(Kind::Caption).h, hd.place.h * h / 1080, 2);
    }
}

TEST(TextOverlayTest, LongCaptionsTakeTwoCentredLines)
{
    const std::string text =
        "A caption that is so long that it has to be set on two lines, one below the other one";
    const TextBox box = textBox(Kind::Caption, text, kHd);
    ASSERT_EQ(box.lines.size(), 2U);
    EXPECT_LT(box.place.w, 0.72 * 1920 + 2 * box.font.size);
    const TextMetrics line = measureText(box.lines[1].text, box.font);
    EXPECT_NEAR(
        box.lines[1].baseline.y - box.lines[0].baseline.y,
        line.ascent + line.descent + 0.25 * box.font.size,
        1);
    for (const TextBox::Line& l : box.lines)
        EXPECT_NEAR(l.baseline.x, (box.place.w - measureText(l.text, box.font).width) / 2, 1e-9);
    EXPECT_EQ(textBox(Kind::Keystroke, text, kHd).lines.size(), 1U);
    EXPECT_EQ(textBox(Kind::Chapter, text, kHd).lines.size(), 1U);
    for (const Kind kind : kKinds)
        EXPECT_GT(textBox(kind, "", kHd).place.h, 50) << "an empty text has a box too";
}

TEST(DrawingCacheTest, MakesEachOnceAndIsEmptiedWhenItIsFull)
{
    DrawingCache<int> cache(3);
    int made = 0;
    const auto get = [&](const char* key) { return cache.get(key, [&] { return ++made; }); };
    EXPECT_EQ(get("a"), 1);
    EXPECT_EQ(get("b"), 2);
    EXPECT_EQ(get("c"), 3);
    EXPECT_EQ(get("a"), 1) << "three are kept";
    EXPECT_EQ(get("d"), 4);
    EXPECT_EQ(cache.size(), 1U);
    EXPECT_EQ(get("a"), 5);
}

} // namespace
} // namespace zento
