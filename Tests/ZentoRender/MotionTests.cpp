#include "SyntheticSource.h"
#include "ZentoImaging/MotionBlur.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/FrameSequence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zento {
namespace {

TEST(MotionTest, IsWhatTheCanvasShowsOfTheCamerasMove)
{
    struct Case {
        const char* name;
        std::optional<ShownCard> previous;
        ShownCard current;
        std::optional<Motion> motion; // around (100, 50) on a canvas 900 high
    };
    const double grown = 0.5 / 2.5 * 300;
    const Case cases[] = {
        {"first frame", {}, {1, {{0, 0}, 2}}, {}},
        {"still", ShownCard{1, {{9, 8}, 2}}, {1.02, {{9, 8}, 2}}, Motion{}},
        {"pan", ShownCard{1, {{9, 8}, 2}}, {1.02, {{14, 5}, 2}}, Motion{5, -3, 0}},
        {"zoom in", ShownCard{1, {{0, 0}, 2}}, {1.02, {{0, 0}, 2.5}}, Motion{50, 25, grown}},
        {"zoom in around the place",
         ShownCard{1, {{0, 0}, 2}},
         {1.02, {{-50, -25}, 2.5}},
         Motion{0, 0, grown}},
        {"zoom out", ShownCard{1, {{0, 0}, 2.5}}, {1.02, {{0, 0}, 2}}, Motion{-50, -25, -75}},
        {"nearly a cut", ShownCard{1, {{1, 0}, 1}}, {1.499, {{0, 0}, 1}}, Motion{-1, 0, 0}},
        {"a cut", ShownCard{1, {{1, 0}, 1}}, {1.5, {{0, 0}, 1}}, {}},
        {"backwards", ShownCard{9, {{1, 0}, 1}}, {1, {{0, 0}, 1}}, Motion{-1, 0, 0}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(motionSince(c.previous, c.current, {100, 50}, 900), c.motion) << c.name;
}

TEST(MotionTest, BlursBeyondStrictThresholdsUpToALimit)
{
    struct Case {
        const char* name;
        Motion motion;
        double radius;
        double smear; // a third of the height off the middle
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {"still", {}, 0, 0},
        {"at the threshold of a move", {0, -1.2, 0}, 0, 0},
        {"just beyond", {0, -1.2001, 0}, 1.08009, 0},
        {"neither axis beyond, both together", {1, -1, 0}, 0.9 * std::sqrt(2), 0},
        {"at the limit", {12, 16, 0}, 18, 0},
        {"fast", {-300, 400, 0}, 18, 0},
        {"at the threshold of a zoom", {0, 0, 1.5}, 0, 0},
        {"a zoom just beyond", {0, 0, 1.5001}, 0, 1.35009},
        {"a fast zoom", {0, 0, 80}, 0, 8},
        {"a zoom out", {0, 0, -80}, 0, 0},
        {"both", {3, 4, 5}, 4.5, 4.5},
        {"nonsense", {infinity, 0, std::nan("")}, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CardBlur blur = cardBlur(c.motion, 600);
        EXPECT_NEAR(std::hypot(blur.reach.x, blur.reach.y), c.radius, 1e-9);
        EXPECT_NEAR(blur.stretch * 200, c.smear, 1e-9);
        EXPECT_EQ(blur.isNone(), c.radius == 0 && c.smear == 0);
        if (c.radius > 0) { // along the way, y down
            EXPECT_NEAR(blur.reach.x * c.motion.dy, blur.reach.y * c.motion.dx, 1e-6);
            EXPECT_GT(blur.reach.x * c.motion.dx + blur.reach.y * c.motion.dy, 0);
        }
    }
}

TEST(MotionTest, ASequenceOfFramesCarriesItFromFrameToFrame)
{
    EditPlan plan;
    plan.output = {.width = 640, .height = 360, .fps = 60};
    plan.camera = {{0, {320, 180}, 1}, {0.1, {200, 100}, 2}};
    plan.timeRemap = {{0, 1, 1}, {5, 6, 1}};
    const RemapCurve curve(plan.timeRemap);
    FrameSequence sequence(plan, {}, curve, {640, 360}, 1.0 / 60);
    const VideoFrame frame(YuvPlanes<const std::uint8_t>{}, nullptr, 0, 0);
    std::optional<CameraRig::State> previous;
    int cuts = 0;
    for (int i = 0; i < 119; ++i) {
        const double tOut = i / 60.0;
        const FrameLayers layers =
            sequence.next({.tOut = tOut, .sourceTime = curve.sourceTime(tOut), .frame = frame});
        if (!layers.motion) {
            ++cuts;
            EXPECT_TRUE(i == 0 || std::abs(tOut - 1) < 0.02) << i;
        } else {
            const Vec2 size = {640, 360};
            const Card now = cardFor(layers.camera, plan.output, plan.style, size);
            const Card before = cardFor(*previous, plan.output, plan.style, size);
            const Vec2 c = layers.camera.center;
            EXPECT_NEAR(layers.motion->dx, now.toOutput(c).x - before.toOutput(c).x, 1e-9) << i;
            EXPECT_NEAR(layers.motion->dy, now.toOutput(c).y - before.toOutput(c).y, 1e-9) << i;
            EXPECT_EQ(layers.motion->zoomPx > 1e-9, now.scale > before.scale + 1e-9) << i;
        }
        previous = layers.camera;
    }
    EXPECT_EQ(cuts, 2);
}

constexpr OutputSpec kOutput = {.width = 240, .height = 150, .fps = 60};
constexpr VideoSize kSource = {240, 150};
constexpr Motion kFast = {11, 6, 4};

FrameLayers
layersOf(const VideoFrame& source, CameraRig::State camera, std::optional<Motion> motion)
{
    return {.source = source, .camera = camera, .motion = motion};
}

StyleSpec blurringStyle()
{
    StyleSpec style;
    style.motionBlur = true;
    style.background = Background::Color{"#204060"};
    return style;
}

RgbValue stripes(Vec2 p)
{
    const double light = std::fmod(p.x + 2 * p.y, 20) < 8 ? 0.9 : 0.2;
    return {light, 0.5, 1 - light};
}

TEST(CardBlurTest, TheCardIsBlurredAsAPictureOfItsOwn)
{
    StyleSpec style = blurringStyle();
    style.fillsCanvas = true;
    style.cornerRadius = 0;
    for (const SourceFormat format : {SourceFormat::TenBits422, SourceFormat::EightBits420}) {
        const VideoFrame source = sampled(stripes, kSource, format);
        const CameraRig::State camera = {{100, 80}, 1.3};
        FrameCompositor subject(kOutput, style, kSource);
        Picture expected = subject.compose(layersOf(source, camera, {}))->clone();
        const auto picture = subject.compose(layersOf(source, camera, kFast));
        const CardBlur blur = cardBlur(kFast, kOutput.height);
        directionalBlur(expected.view(), blur.reach);
        zoomBlur(expected.view(), {120, 75}, blur.stretch);
        for (std::size_t p = 0; p < 3; ++p)
            for (int y = 0; y < expected.plane(p).height; ++y)
                ASSERT_TRUE(std::ranges::equal(
                    std::span(expected.plane(p).row(y), std::size_t(expected.plane(p).width)),
                    std::span(picture->plane(p).row(y), std::size_t(expected.plane(p).width))))
                    << p << ", row " << y;
    }
}

TEST(CardBlurTest, EdgesStayBrightAndWhatLiesAroundStaysSharp)
{
    const VideoFrame white = sampled([](Vec2) { return RgbValue{1, 1, 1}; }, kSource);
    const VideoFrame pattern = sampled(stripes, kSource);
    for (const double zoom : {0.7, 1.0, 1.15, 2.0}) {
        SCOPED_TRACE(zoom);
        FrameCompositor subject(kOutput, blurringStyle(), kSource);
        const CameraRig::State camera = {{90, 60}, zoom};
        const Picture plain = subject.compose(layersOf(white, camera, {}))->clone();
        subject.forgetLast();
        const auto blurred = subject.compose(layersOf(white, camera, kFast));
        subject.forgetLast();
        const auto other = subject.compose(layersOf(pattern, camera, kFast));
        const Card card = subject.card(camera);
        for (int y = 0; y < 150; ++y)
            for (int x = 0; x < 240; ++x) {
                ASSERT_EQ(blurred->plane(0).row(y)[x], plain.plane(0).row(y)[x]) << x << ", " << y;
                const bool isOutside = x + 1 < card.origin.x || y + 1 < card.origin.y
                                       || x > card.origin.x + card.w || y > card.origin.y + card.h;
                if (isOutside) {
                    ASSERT_EQ(other->plane(0).row(y)[x], plain.plane(0).row(y)[x])
                        << x << ", " << y;
                }
            }
    }
}

TEST(CardBlurTest, AFrameIsTakenForAnotherOnlyIfItsBlurIsThatOnes)
{
    const VideoFrame source = sampled(stripes, kSource);
    const CameraRig::State camera = {{90, 60}, 1.4};
    struct Step {
        const char* name;
        std::optional<Motion> motion;
        bool repeats; // the frame before
    };
    const Step steps[] = {
        {"sharp", {}, false},
        {"too slow to see", Motion{1, 0, 1}, true},
        {"fast", kFast, false},
        {"as fast", kFast, true},
        {"faster", Motion{15, 6, 4}, false},
        {"beyond the limit", Motion{30, 0, 0}, false},
        {"further beyond", Motion{60, 0, 0}, true},
        {"sharp again", {}, false},
    };
    FrameCompositor reusing(kOutput, blurringStyle(), kSource);
    StyleSpec off = blurringStyle();
    off.motionBlur = false;
    FrameCompositor sharp(kOutput, off, kSource);
    const auto still = sharp.compose(layersOf(source, camera, {}));
    std::shared_ptr<const Picture> before;
    for (const Step& step : steps) {
        const auto picture = reusing.compose(layersOf(source, camera, step.motion));
        EXPECT_EQ(picture == before, step.repeats) << step.name;
        before = picture;
        EXPECT_EQ(sharp.compose(layersOf(source, camera, step.motion)), still) << step.name;
    }
}

} // namespace
} // namespace zento
