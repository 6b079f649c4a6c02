#include "SyntheticSource.h"
#include "TestSupport/SamePixels.h"
#include "ZentoImaging/Convert.h"
#include "ZentoRender/BackgroundRenderer.h"
#include "ZentoRender/FrameCompositor.h"
#include "ZentoRender/FrameSequence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

constexpr OutputSpec kOutput = {.width = 480, .height = 270, .fps = 60};
constexpr VideoSize kSource = {480, 270};

/// Slow waves, so that the halved chroma holds all there is.
RgbValue waves(Vec2 p)
{
    return {
        0.5 + 0.3 * std::sin(p.x * 0.02 + 0.3),
        0.5 + 0.3 * std::sin(p.y * 0.03),
        0.55 + 0.25 * std::cos((p.x + p.y) * 0.02)};
}

StyleSpec styleOf(const char* background)
{
    StyleSpec style;
    style.background = Background::Color{background};
    return style;
}

FrameLayers plainLayers()
{
    static const VideoFrame kFrame = sampled(waves, kSource);
    return {.source = kFrame, .camera = {{240, 135}, 1}};
}

/// The largest difference in a plane.
int largestDifference(const Picture& a, const Picture& b, std::size_t plane)
{
    int largest = 0;
    for (int y = 0; y < a.plane(plane).height; ++y)
        for (int x = 0; x < a.plane(plane).width; ++x)
            largest =
                std::max(largest, std::abs(a.plane(plane).row(y)[x] - b.plane(plane).row(y)[x]));
    return largest;
}

// The canvas blends in R'G'B' with eight bits, the compositor in Y'CbCr: both round.
TEST(TextFrameTest, BlendsAsDrawingOverTheFrameInRgbDoes)
{
    struct Case {
        const char* name;
        TextOverlay::Kind kind;
        std::optional<FrameText> FrameLayers::* layer;
        double alpha;
    };
    const Case cases[] = {
        {"keystroke", TextOverlay::Kind::Keystroke, &FrameLayers::keystroke, 1},
        {"caption", TextOverlay::Kind::Caption, &FrameLayers::caption, 1},
        {"fading caption", TextOverlay::Kind::Caption, &FrameLayers::caption, 0.4},
        {"chapter", TextOverlay::Kind::Chapter, &FrameLayers::chapter, 1},
    };
    const std::string text = "Ågy 字";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StyleSpec style = styleOf("#406080");
        style.padding = 0; // the card's edge would not survive the way to R'G'B' and back
        style.cornerRadius = 0;
        FrameCompositor subject(kOutput, style, kSource);
        FrameLayers layers = plainLayers();
        const auto without = subject.compose(layers);
        layers.*(c.layer) = FrameText{text, c.alpha};
        const auto with = subject.compose(layers);

        const TextBox box = textBox(c.kind, text, kOutput);
        Canvas chip(static_cast<int>(box.place.w), static_cast<int>(box.place.h));
        draw(box, chip, {box.place.x, box.place.y});
        Canvas expected = toCanvas(without->view());
        expected.drawImage(chip, box.place, Interpolation::Nearest, c.alpha);
        const Picture reference = toPicture(expected, Layout::Yuv420);
        for (std::size_t plane = 0; plane < 3; ++plane)
            EXPECT_LE(largestDifference(*with, reference, plane), 2) << plane;
        EXPECT_GT(largestDifference(*with, *without, 0), 30);
    }
}

TEST(TextFrameTest, TheSequenceOfFramesSaysWhatThePlanSays)
{
    EditPlan plan;
    plan.output = kOutput;
    plan.keystrokes = {{1, 2, "K"}};
    plan.captions = {{0.5, 1, "W"}};
    plan.chapters = {{0.8, "C"}};
    FrameSequence sequence(plan, {}, RemapCurve({{0, 9, 2}}), kSource, 1.0 / 60);
    const auto at = [&](double tOut) {
        return sequence.next({.tOut = tOut, .sourceTime = 2 * tOut, .frame = plainLayers().source});
    };
    const FrameLayers bare = at(0);
    EXPECT_FALSE(bare.keystroke || bare.caption || bare.chapter);
    const FrameLayers all = at(1.125);
    EXPECT_EQ(all.keystroke, (FrameText{"K", 1}));
    EXPECT_EQ(all.caption, (FrameText{"W", 0.5}));
    EXPECT_EQ(all.chapter, (FrameText{"C", 1}));
}

TEST(TextFrameTest, AKeystrokeRaisesTheCaption)
{
    FrameCompositor subject(kOutput, styleOf("#406080"), kSource);
    FrameLayers layers = plainLayers();
    layers.caption = FrameText{"caption", 1};
    const auto low = subject.compose(layers);
    layers.keystroke = FrameText{"K", 0};
    const auto raised = subject.compose(layers);
    EXPECT_FALSE(test::samePixels(*low, *raised)) << "a key that is not seen raises too";
    layers.keystroke->text = "another";
    EXPECT_EQ(subject.compose(layers), raised);
    layers.keystroke.reset();
    EXPECT_TRUE(test::samePixels(*subject.compose(layers), *low));
}

TEST(TextFrameTest, WhatIsReusedIsWhatWouldBeDrawn)
{
    FrameLayers layers = plainLayers();
    struct Step {
        const char* name;
        void (*change)(FrameLayers&);
        bool repeats; // the frame before
    };
    const Step steps[] = {
        {"first", [](FrameLayers&) {}, false},
        {"a caption comes", [](FrameLayers& l) { l.caption = FrameText{"one", 0.3}; }, false},
        {"and fades in", [](FrameLayers& l) { l.caption->alpha = 0.6; }, false},
        {"all but there", [](FrameLayers& l) { l.caption->alpha = 0.9995; }, false},
        {"there", [](FrameLayers& l) { l.caption->alpha = 1; }, true},
        {"it says something else", [](FrameLayers& l) { l.caption->text = "two"; }, false},
        {"a key", [](FrameLayers& l) { l.keystroke = FrameText{"two", 1}; }, false},
        {"a chapter", [](FrameLayers& l) { l.chapter = FrameText{"two", 1}; }, false},
        {"fades out", [](FrameLayers& l) { l.chapter->alpha = 0.01; }, false},
        {"is gone", [](FrameLayers& l) { l.chapter.reset(); }, true},
        {"a text wider than the frame",
         [](FrameLayers& l) { l.caption->text = std::string(5000, 'W'); },
         false},
    };
    FrameCompositor reusing(kOutput, styleOf("#406080"), kSource);
    FrameCompositor plain(kOutput, styleOf("#406080"), kSource);
    std::shared_ptr<const Picture> before;
    for (const Step& step : steps) {
        step.change(layers);
        const auto picture = reusing.compose(layers);
        plain.forgetLast();
        EXPECT_TRUE(test::samePixels(*picture, *plain.compose(layers))) << step.name;
        EXPECT_EQ(picture == before, step.repeats) << step.name;
        before = picture;
    }
}

TextCard cardOf(const char* design, const char* title = "Title")
{
    return {.title = title, .subtitle = "and more", .duration = 4, .design = design};
}

TEST(TextFrameTest, ACardAtRestIsTheSamePicture)
{
    FrameCompositor subject(kOutput, styleOf("#202030"), kSource);
    FrameCompositor plain(kOutput, styleOf("#202030"), kSource);
    const TextCard card = cardOf("classic");
    std::shared_ptr<const Picture> before;
    for (int i = 0; i < 40; ++i) {
        const double progress = i / 40.0;
        const double t = progress * card.duration;
        const auto picture = subject.composeCard(card, progress);
        EXPECT_EQ(picture == before, t > 0.95 && t < 3.65) << t;
        plain.forgetLast();
        ASSERT_TRUE(test::samePixels(*picture, *plain.composeCard(card, progress))) << t;
        before = picture;
    }
    EXPECT_NE(subject.composeCard(cardOf("classic", "Another"), 0.5), before);
}

/// Where a picture is lighter than another: the centre and the standard deviation across, pixels.
struct Spread {
    Vec2 center;
    double width = 0;
};

Spread spreadOf(const Picture& with, const Picture& without)
{
    double sum = 0;
    Vec2 moment;
    double square = 0;
    const auto a = with.plane(0);
    const auto b = without.plane(0);
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x) {
            const double weight = a.row(y)[x] - b.row(y)[x];
            const Vec2 p = {x + 0.5, y + 0.5};
            sum += weight;
            moment = {moment.x + weight * p.x, moment.y + weight * p.y};
            square += weight * p.x * p.x;
        }
    const Vec2 center = {moment.x / sum, moment.y / sum};
    return {.center = center, .width = std::sqrt(square / sum - center.x * center.x)};
}

TEST(TextFrameTest, ACardFadesFromTheBackgroundAndSettlesAroundItsPlace)
{
    for (const char* design : {"classic", "editorial", "pill", "glow", "mono", "underline"}) {
        SCOPED_TRACE(design);
        FrameCompositor subject(kOutput, styleOf("#202030"), kSource);
        const TextCard card = cardOf(design);
        const auto ground = subject.composeCard(card, 0);
        const auto at = [&](double seconds) { return subject.composeCard(card, seconds / 4); };
        EXPECT_EQ(largestDifference(*ground, *at(4), 0), 0);
        const auto rest = at(2);
        const int full = largestDifference(*rest, *ground, 0);
        EXPECT_GT(full, 100);
        EXPECT_NEAR(largestDifference(*at(4 - 0.175), *ground, 0), full / 2.0, 2);

        // At scale 1 the text is the drawing itself, on whole pixels.
        const TextCardLayout layout = layOut(card, kOutput);
        Canvas canvas(static_cast<int>(layout.place.w), static_cast<int>(layout.place.h));
        const Color accent = BackgroundRenderer::color(card.accentHex);
        draw(layout, accent, Ground::Dark, canvas, {layout.place.x, layout.place.y});
        Canvas expected = toCanvas(ground->view());
        expected.drawImage(canvas, layout.place, Interpolation::Nearest);
        EXPECT_LE(largestDifference(*rest, toPicture(expected, Layout::Yuv420), 0), 2);

        // While it settles it is larger, and its resting point stays. What a sharp filter clips
        // differs from place to place, which moves the measure a little.
        const Spread settled = spreadOf(*rest, *ground);
        const Spread settling = spreadOf(*at(0.2), *ground);
        const double scale = cardAppearance(4, 0.05).scale;
        EXPECT_GT(scale, 1.01);
        EXPECT_NEAR(settling.width / settled.width, scale, 0.006);
        const Vec2 still = layout.restingPoint;
        const Vec2 moved = {
            still.x + (settled.center.x - still.x) * scale,
            still.y + (settled.center.y - still.y) * scale};
        EXPECT_NEAR(settling.center.x, moved.x, 0.15);
        EXPECT_NEAR(settling.center.y, moved.y, 0.15);
    }
}

TEST(TextFrameTest, TheInkFollowsTheBackground)
{
    struct Case {
        const char* name;
        StyleSpec::Background background;
        bool isLight;
    };
    const Case cases[] = {
        {"just dark", Background::Color{"#989898"}, false},
        {"just light", Background::Color{"#9A9A9A"}, true},
        {"green weighs most", Background::Color{"#00FF50"}, true},
        {"blue least", Background::Color{"#5050FF"}, false},
        {"light on average", Background::LinearGradient{"#FFFFFF", "#505050"}, true},
        {"dark on average", Background::LinearGradient{"#FFFFFF", "#202020"}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        StyleSpec style;
        style.background = c.background;
        const Canvas drawn =
            BackgroundRenderer::render(c.background, kOutput.width, kOutput.height);
        EXPECT_EQ(BackgroundRenderer::isLight(drawn), c.isLight);
        FrameCompositor subject(kOutput, style, kSource);
        const auto ground = subject.composeCard(cardOf("classic"), 0);
        const auto rest = subject.composeCard(cardOf("classic"), 0.5);
        double sum = 0;
        for (int y = 0; y < kOutput.height; ++y)
            for (int x = 0; x < kOutput.width; ++x)
                sum += rest->plane(0).row(y)[x] - ground->plane(0).row(y)[x];
        EXPECT_EQ(sum < 0, c.isLight) << "dark ink on light ground";
    }
}

} // namespace
} // namespace zento
