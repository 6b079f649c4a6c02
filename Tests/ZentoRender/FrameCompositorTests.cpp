#include "ReferenceFrame.h"
#include "SyntheticSource.h"
#include "TestSupport/SamePixels.h"
#include "ZentoRender/FrameCompositor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zento {
namespace {

constexpr VideoSize kCanvas = {200, 120};
constexpr OutputSpec kOutput = {.width = 200, .height = 120, .fps = 60};
constexpr VideoSize kSource = {240, 150};

/// Slow waves: whatever kernel scales them, they stay the same function.
RgbValue waves(Vec2 p)
{
    return {
        0.5 + 0.3 * std::sin(p.x * 0.06 + 0.3),
        0.5 + 0.3 * std::sin(p.y * 0.08),
        0.55 + 0.25 * std::cos((p.x + p.y) * 0.05)};
}

StyleSpec cardStyle()
{
    StyleSpec style;
    style.background = Background::Color{"#7A8CB0"};
    style.padding = 0.1;
    style.cornerRadius = 14;
    style.shadowRadius = 16;
    style.shadowOffsetY = 5;
    style.shadowOpacity = 0.6;
    return style;
}

FrameLayers
layersOf(VideoFrame source, CameraRig::State camera, std::optional<CursorState> cursor = {})
{
    return {
        .source = std::move(source), .camera = camera, .cursor = std::move(cursor), .ripples = {}};
}

FrameCompositor compositor(const StyleSpec& style)
{
    return {kOutput, style, kSource};
}

struct Difference {
    double largest = 0;
    double mean = 0;
};

Difference
compare(const Plane<const std::uint8_t>& plane, const ReferenceFrame& reference, std::size_t c)
{
    const PlaneGrid grid = planeGrid(Layout::Yuv420, c);
    const Vec2 size = {1 / grid.perPixel.x, 1 / grid.perPixel.y};
    Difference difference;
    for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < plane.width; ++x) {
            const Rect area = {
                (x - grid.offset.x) * size.x, (y - grid.offset.y) * size.y, size.x, size.y};
            const double error = std::abs(plane.row(y)[x] - reference.mean(area)[c]);
            difference.largest = std::max(difference.largest, error);
            difference.mean += error / (plane.width * plane.height);
        }
    return difference;
}

TEST(FrameCompositorTest, AgreesWithAPointByPointCompositionInRgb)
{
    struct Case {
        const char* name;
        CameraRig::State camera;
        SourceFormat format;
        bool fills;
    };
    const Case cases[] = {
        {"a card with margins", {{120, 75}, 1}, SourceFormat::TenBits422, false},
        {"a small card", {{120, 75}, 0.71}, SourceFormat::TenBits422, false},
        {"where it begins to follow", {{30, 140}, 1.213}, SourceFormat::TenBits422, false},
        {"larger than the canvas", {{40, 33}, 1.9}, SourceFormat::TenBits422, false},
        {"a film as the source", {{120, 75}, 0.93}, SourceFormat::EightBits420, false},
        {"filling the canvas", {{120, 75}, 1}, SourceFormat::TenBits422, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StyleSpec style = cardStyle();
        style.fillsCanvas = c.fills;
        FrameCompositor subject = compositor(style);
        const auto picture = subject.compose(layersOf(sampled(waves, kSource, c.format), c.camera));
        const ReferenceFrame reference(
            kCanvas,
            subject.card(c.camera),
            style,
            [](Vec2) { return RgbValue{0x7A / 255.0, 0x8C / 255.0, 0xB0 / 255.0}; },
            waves);
        for (std::size_t plane = 0; plane < 3; ++plane) {
            SCOPED_TRACE(plane);
            const Difference difference = compare(picture->plane(plane), reference, plane);
            // Along the corners coverage is good to 0.03, here of 110 levels.
            EXPECT_LT(difference.largest, 3.5);
            EXPECT_LT(difference.mean, 0.4);
        }
    }
}

TEST(FrameCompositorTest, CornersShowTheBackgroundAndTheShadowLiesBelow)
{
    StyleSpec style = cardStyle();
    style.shadowOffsetY = 8;
    FrameCompositor subject = compositor(style);
    const CameraRig::State camera = {{120, 75}, 1};
    const auto white = sampled([](Vec2) { return RgbValue{1, 1, 1}; }, kSource);
    const auto picture = subject.compose(layersOf(white, camera));
    const Card card = subject.card(camera);
    const auto luma = [&](double x, double y) {
        return static_cast<int>(picture->plane(0).row(
            static_cast<int>(std::floor(y)))[static_cast<int>(std::floor(x))]);
    };
    const double middle = card.origin.x + card.w / 2;
    EXPECT_EQ(luma(middle, card.origin.y + 1.5), 235);
    EXPECT_LT(luma(card.origin.x + 1.5, card.origin.y + 1.5), 140) << "the corner is cut";
    EXPECT_LT(luma(middle, card.origin.y + card.h + 1.5) + 10, luma(middle, card.origin.y - 1.5))
        << "darker below than above";
    EXPECT_NEAR(luma(1, 1), limitedRange({0x7A / 255.0, 0x8C / 255.0, 0xB0 / 255.0})[0], 6);
}

/// How a picture differs from another in a plane: where, weighed by how much.
struct Mark {
    Vec2 centroid; // pixels
    Rect box;      // of what differs by more than a tenth of the range
};

Mark markOf(const Picture& with, const Picture& without, std::size_t planeIndex = 0)
{
    const auto a = with.plane(planeIndex);
    const auto b = without.plane(planeIndex);
    const PlaneGrid grid = with.view().grid(planeIndex);
    Mark mark;
    double sum = 0;
    Vec2 low = {1e9, 1e9};
    Vec2 high = {-1e9, -1e9};
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x) {
            const double weight = std::abs(a.row(y)[x] - b.row(y)[x]);
            const Vec2 p = {
                (x + 0.5 - grid.offset.x) / grid.perPixel.x,
                (y + 0.5 - grid.offset.y) / grid.perPixel.y};
            sum += weight;
            mark.centroid.x += weight * p.x;
            mark.centroid.y += weight * p.y;
            if (weight < 25)
                continue;
            low = {std::min(low.x, p.x - 0.5), std::min(low.y, p.y - 0.5)};
            high = {std::max(high.x, p.x + 0.5), std::max(high.y, p.y + 0.5)};
        }
    mark.centroid = {mark.centroid.x / sum, mark.centroid.y / sum};
    mark.box = {low.x, low.y, high.x - low.x, high.y - low.y};
    return mark;
}

const Painting kBlack = [](Vec2) { return RgbValue{0, 0, 0}; };

TEST(FrameCompositorTest, PointersAndRipplesSitOnTheirPlace)
{
    struct Case {
        const char* name;
        const char* cursorStyle;
        std::optional<CursorState> cursor;
        std::vector<Ripple> ripples;
        Vec2 source; // what it marks
    };
    const Case cases[] = {
        {"text pointer", "system", CursorState{{101.3, 60.7}, "iBeam"}, {}, {101.3, 60.7}},
        {"text pointer, a third of a pixel on",
         "system",
         CursorState{{101.7, 61.0}, "iBeam"},
         {},
         {101.7, 61.0}},
        {"circle", "circle", CursorState{{77.2, 90.9}, "arrow"}, {}, {77.2, 90.9}},
        {"ripple", "system", {}, {{{140.45, 40.6}, 0.4}}, {140.45, 40.6}},
        {"pressed while zoomed", "system", CursorState{{120, 75}, "iBeam", 0.7}, {}, {120, 75}},
    };
    for (const double zoom : {0.8, 1.0, 1.77}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name + std::string(", zoom ") + std::to_string(zoom));
            StyleSpec style = cardStyle();
            style.cursorStyle = c.cursorStyle;
            style.cursorScale = 8;
            FrameCompositor subject = compositor(style);
            FrameLayers layers = layersOf(sampled(kBlack, kSource), {{110, 70}, zoom});
            const auto without = subject.compose(layers);
            layers.cursor = c.cursor;
            layers.ripples = c.ripples;
            const auto with = subject.compose(layers);
            const Vec2 expected = subject.card(layers.camera).toOutput(c.source);
            const Mark mark = markOf(*with, *without);
            EXPECT_NEAR(mark.centroid.x, expected.x, 0.2);
            EXPECT_NEAR(mark.centroid.y, expected.y, 0.2);
        }
    }
}

TEST(FrameCompositorTest, TheTipsOfArrowAndHandAreAtThePointer)
{
    struct Case {
        const char* style;
        Vec2 tip; // of the outline, from the hotspot, design units
    };
    // An arrow's tip is at (2, 2) and its outline 1.6 wide, its hotspot (0.08, 0.05) of 24 × 36.
    // A finger begins at y 2 in the middle of 10.8 to 16.2; the hotspot is (0.52, 0.05) of 26 × 36.
    const Case cases[] = {
        {"arrow", {2 - 1.6 - 0.08 * 24, 2 - 2.6 - 0.05 * 36}},
        {"pointingHand", {0, 2 - 1.6 - 0.05 * 36}},
    };
    StyleSpec style = cardStyle();
    style.cursorScale = 8;
    const double unit = 120 * 0.052 * 4 / 36; // pixels
    for (const Case& c : cases) {
        SCOPED_TRACE(c.style);
        FrameCompositor subject = compositor(style);
        FrameLayers layers = layersOf(sampled(kBlack, kSource), {{120, 75}, 1});
        const auto without = subject.compose(layers);
        layers.cursor = CursorState{{100, 60}, c.style};
        const Mark mark = markOf(*subject.compose(layers), *without);
        const Vec2 hotspot = subject.card(layers.camera).toOutput({100, 60});
        EXPECT_NEAR(mark.box.y, hotspot.y + c.tip.y * unit, 1.0);
        if (c.tip.x != 0) {
            EXPECT_NEAR(mark.box.x, hotspot.x + c.tip.x * unit, 1.0);
        }
    }
}

TEST(FrameCompositorTest, AFadedPointerIsBlendedByItsAlpha)
{
    FrameCompositor subject = compositor(cardStyle());
    FrameLayers layers = layersOf(sampled(kBlack, kSource), {{120, 75}, 1});
    const auto without = subject.compose(layers);
    layers.cursor = CursorState{{100, 60}, "arrow"};
    const auto opaque = subject.compose(layers);
    layers.cursor->alpha = 0.5;
    const auto faded = subject.compose(layers);
    for (int y = 0; y < kCanvas.height; ++y)
        for (int x = 0; x < kCanvas.width; ++x) {
            const int below = without->plane(0).row(y)[x];
            const int full = opaque->plane(0).row(y)[x];
            ASSERT_NEAR(faded->plane(0).row(y)[x], (below + full) / 2.0, 1.0);
        }
}

TEST(FrameCompositorTest, ASlowCameraMovesWithoutJitterInLumaAndChroma)
{
    const Vec2 spot = {121, 74};
    const VideoFrame source = sampled(
        [&](Vec2 p) {
            const double d = (p.x - spot.x) * (p.x - spot.x) + (p.y - spot.y) * (p.y - spot.y);
            const double light = std::exp(-d / 18);
            return RgbValue{light * 0.9, light * 0.2, light * 0.3};
        },
        kSource);
    const VideoFrame dark = sampled(kBlack, kSource, SourceFormat::TenBits422, 2);
    FrameCompositor subject = compositor(cardStyle());
    for (int i = 0; i < 40; ++i) {
        const CameraRig::State camera = {{110 + i * 0.07, 70 + i * 0.03}, 1.6 + i * 0.0011};
        const auto with = subject.compose(layersOf(source, camera));
        const auto without = subject.compose(layersOf(dark, camera));
        const Vec2 expected = subject.card(camera).toOutput(spot);
        for (const std::size_t plane : {0U, 2U}) {
            const Mark mark = markOf(*with, *without, plane);
            ASSERT_NEAR(mark.centroid.x, expected.x, 0.06) << "plane " << plane << ", frame " << i;
            ASSERT_NEAR(mark.centroid.y, expected.y, 0.06) << "plane " << plane << ", frame " << i;
        }
    }
}

TEST(FrameCompositorTest, ACardOfAnySizeCoversItsArea)
{
    StyleSpec style = cardStyle();
    style.background = Background::Color{"#000000"};
    style.shadowOpacity = 0;
    style.cornerRadius = 6;
    const VideoFrame white = sampled([](Vec2) { return RgbValue{1, 1, 1}; }, kSource);
    FrameCompositor subject = compositor(style);
    for (double zoom = 0.2; zoom < 1.1; zoom += 0.0137) {
        const CameraRig::State camera = {{120, 75}, zoom};
        const auto luma = subject.compose(layersOf(white, camera))->plane(0);
        double covered = 0;
        for (int y = 0; y < luma.height; ++y)
            for (int x = 0; x < luma.width; ++x)
                covered += (luma.row(y)[x] - 16) / 219.0;
        const Card card = subject.card(camera);
        const double corners = (4 - std::numbers::pi) * 6 * 6;
        // Half a level along the edges and 0.03 of the corners' pixels; a lost column would be 60.
        EXPECT_NEAR(covered, card.w * card.h - corners, 2.5) << zoom;
    }
}

TEST(FrameCompositorTest, WhatIsReusedIsWhatWouldBeDrawn)
{
    const VideoFrame first = sampled(waves, kSource);
    const VideoFrame second = sampled(kBlack, kSource, SourceFormat::TenBits422, 2);
    const CameraRig::State still = {{120, 75}, 1};
    const CameraRig::State zoomed = {{100, 75}, 1.5};
    const CursorState arrow = {{50, 50}, "arrow"};
    struct Step {
        const char* name;
        FrameLayers layers;
        bool repeats; // the frame before
    };
    const Step steps[] = {
        {"first", layersOf(first, still, arrow), false},
        {"again", layersOf(first, still, arrow), true},
        {"the pointer moves", layersOf(first, still, CursorState{{60, 50}, "arrow"}), false},
        {"and back", layersOf(first, still, arrow), false},
        {"its shape changes", layersOf(first, still, CursorState{{50, 50}, "iBeam"}), false},
        {"it is gone", layersOf(first, still), false},
        {"invisible is gone", layersOf(first, still, CursorState{{9, 9}, "arrow", 0, 0}), true},
        {"another picture", layersOf(second, still), false},
        {"of another time", layersOf(second.retimed(3), still), true},
        {"the camera moves", layersOf(second, zoomed), false},
        {"by nothing to see", layersOf(second, {{100.00001, 75}, 1.5000001}), true},
        {"the first picture again", layersOf(first, zoomed, arrow), false},
    };
    FrameCompositor reusing = compositor(cardStyle());
    FrameCompositor plain = compositor(cardStyle());
    std::shared_ptr<const Picture> before;
    for (const Step& step : steps) {
        const auto picture = reusing.compose(step.layers);
        plain.forgetLast();
        EXPECT_TRUE(test::samePixels(*picture, *plain.compose(step.layers))) << step.name;
        EXPECT_EQ(picture == before, step.repeats) << step.name;
        before = picture;
    }
}

} // namespace
} // namespace zento
