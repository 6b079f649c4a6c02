#include "ZentoRender/Screenshot/Annotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

namespace zento {
namespace {

using Kind = Annotation::Kind;

Annotation mark(Kind kind, Vec2 start, Vec2 end = {})
{
    return {.kind = kind, .start = start, .end = end};
}

Annotation pen(std::vector<Vec2> points)
{
    return {.kind = Kind::Pen, .start = {1, 2}, .end = {3, 5}, .points = std::move(points)};
}

TEST(AnnotationTest, KindsHaveNamesAndHandles)
{
    std::set<std::string_view> names;
    int points = 0;
    int ends = 0;
    for (const Kind kind : kAllAnnotationKinds) {
        EXPECT_EQ(annotationKind(name(kind)), kind);
        names.insert(name(kind));
        points += isPoint(kind) ? 1 : 0;
        ends += hasEnds(kind) ? 1 : 0;
        EXPECT_FALSE(isPoint(kind) && hasEnds(kind));
    }
    EXPECT_EQ(names.size(), kAllAnnotationKinds.size());
    EXPECT_EQ(points, 2);
    EXPECT_EQ(ends, 7);
    EXPECT_EQ(name(Kind::Spotlight), "spotlight");
    EXPECT_EQ(annotationKind("Arrow"), std::nullopt);
    EXPECT_NE(Annotation().id, Annotation().id);
    EXPECT_EQ(Annotation().id.size(), 36U);
}

TEST(AnnotationTest, SpansItsCornersOrItsPoints)
{
    EXPECT_EQ(mark(Kind::Box, {30, 5}, {10, 25}).rect(), (Rect{10, 5, 20, 20}));
    EXPECT_EQ(pen({{4, 9}, {-1, 7}, {2, 30}}).rect(), (Rect{-1, 7, 5, 23}));
    EXPECT_EQ(pen({{4, 9}}).rect(), (Rect{4, 9, 0, 0}));
    EXPECT_EQ(pen({}).rect(), (Rect{1, 2, 2, 3}));
}

TEST(AnnotationTest, MovesAndScalesEveryPlaceAndNothingElse)
{
    const Annotation before = pen({{4, 9}, {-1, 7}});
    const Annotation moved = before.translated({10, -1});
    EXPECT_EQ(moved.rect(), (Rect{9, 6, 5, 2}));
    EXPECT_EQ(moved.start, (Vec2{11, 1}));
    EXPECT_EQ(moved.translated({-10, 1}), before) << "the same mark, its id too";
    const Annotation scaled = before.scaled(2);
    EXPECT_EQ(scaled.rect(), (Rect{-2, 14, 10, 4}));
    EXPECT_EQ(scaled.end, (Vec2{6, 10}));
    EXPECT_EQ(scaled.width, before.width);
}

TEST(AnnotationTest, HitTest)
{
    // In an image 1040 pixels high a line is 4 wide; the tolerance is 3.
    Annotation text = mark(Kind::Text, {100, 100});
    text.text = "四字看看"; // 4 characters of 0.62 * 28
    Annotation wide = mark(Kind::Line, {0, 0}, {100, 0});
    wide.width = 5;
    struct Case {
        const char* name;
        Annotation mark;
        Vec2 p;
        bool hit;
    };
    const Case cases[] = {
        {"on a line", mark(Kind::Line, {0, 0}, {100, 100}), {50, 50}, true},
        {"beside it", mark(Kind::Line, {0, 0}, {100, 0}), {50, 7}, true},
        {"too far", mark(Kind::Line, {0, 0}, {100, 0}), {50, 7.01}, false},
        {"behind its end", mark(Kind::Arrow, {0, 0}, {100, 0}), {107.1, 0}, false},
        {"a wider line", wide, {50, 23}, true},
        {"no length", mark(Kind::Arrow, {5, 5}, {5, 5}), {5, 12}, true},
        {"inside a box", mark(Kind::Box, {100, 80}, {0, 0}), {50, 40}, true},
        {"its tolerance", mark(Kind::Ellipse, {0, 0}, {100, 80}), {-3, 83}, true},
        {"outside it", mark(Kind::Spotlight, {0, 0}, {100, 80}), {-3.1, 40}, false},
        {"a pen's segment", pen({{0, 0}, {0, 50}, {50, 50}}), {25, 57}, true},
        {"not between its ends", pen({{0, 0}, {0, 50}, {50, 50}}), {40, 10}, false},
        {"a dot", pen({{9, 9}}), {9, 16}, true},
        {"beside a dot", pen({{9, 9}}), {9, 16.1}, false},
        {"an empty pen", pen({}), {1, 2}, false},
        {"a badge", mark(Kind::Badge, {50, 50}), {50 + 3.6 * 4 + 2.9, 50}, true},
        {"beside a badge", mark(Kind::Badge, {50, 50}), {50 + 3.6 * 4 + 3.1, 50}, false},
        {"above a text's start", text, {120, 80}, true},
        {"its top", text, {100, 100 - 30.8 - 3}, true},
        {"below its start", text, {120, 100 + 5.6 + 3.1}, false},
        {"its last character", text, {100 + 4 * 0.62 * 28 + 2, 90}, true},
        {"behind it", text, {100 + 4 * 0.62 * 28 + 3.1, 90}, false},
        {"an empty text", mark(Kind::Text, {100, 100}), {128, 90}, true},
        {"nowhere", mark(Kind::Line, {0, 0}, {100, 0}), {NAN, 0}, false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.mark.hitTest(c.p, 3, 1040), c.hit) << c.name;
}

TEST(AnnotationTest, LinesGrowWithTheImageFromFourPixelsOn)
{
    EXPECT_EQ(baseLineWidth(200), 4);
    EXPECT_EQ(baseLineWidth(1040), 4);
    EXPECT_EQ(baseLineWidth(2600), 10);
}

} // namespace
} // namespace zento
