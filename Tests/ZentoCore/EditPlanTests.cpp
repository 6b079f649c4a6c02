#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Error.h"

#include <gtest/gtest.h>

#include <string>

namespace zento {
namespace {

const std::string kLeast = R"("output":{"width":2,"height":2,"fps":60},"timeRemap":[],"camera":[],)"
                           R"("cursor":[],"clicks":[],"sfx":[])";

EditPlan fullPlan()
{
    EditPlan plan;
    plan.output = {1920, 1080, 29.97};
    plan.style.background = Background::Blobs{"#111111", {"#222222", "#333333"}};
    plan.timeRemap = {{0, 4, 1}, {5, 9, 2.4}};
    plan.camera = {{0, {960, 540}, 1}, {2.5, {100.25, 200}, 1.6}};
    plan.cursor = {{0.1, {1, 2}, "arrow"}};
    plan.clicks = {{1, {3, 4}}};
    plan.sfx = {{0.5, "whoosh", 0.7}};
    plan.music = MusicPlan{"/m/a.m4a", -11, 0.25, 0.4, 1.8, {{0, -6}}, 12.5};
    plan.focusMoments = {{{1, "click", "Save", 1.35, 1.5, 2}, {2, "typing", {}, 1.6, {}, {}}}};
    plan.keystrokes = {{{0, 1, "⌘C"}}};
    plan.captions = {{{0, 1, "hello"}}};
    plan.narration = NarrationPlan{"narration.wav", 0.125, 0};
    plan.chapters = {{{0, "One"}}};
    plan.webcam = WebcamPlan{.file = "webcam.mov", .shape = "square", .roundness = 0.3};
    plan.systemAudio = NarrationPlan{"system.wav", 0, -3};
    plan.titleCard = TextCard{.title = "T", .subtitle = "S"};
    plan.endCard = TextCard{.title = "E", .duration = 2.4};
    return plan;
}

TEST(PlanDocuments, surviveTheRoundTrip)
{
    EXPECT_EQ(decodePlan(encodePlan(fullPlan())), fullPlan());
    EXPECT_EQ(encodePlan(decodePlan(encodePlan(fullPlan()))), encodePlan(fullPlan()));
}

TEST(PlanDocuments, fillInWhatLaterVersionsAdded)
{
    const EditPlan plan = decodePlan(
        "{" + kLeast
        + R"(,"style":{},"from":"the future",)"
          R"("webcam":{"file":"w","shape":"square"},"titleCard":{"title":"T"}})");
    EXPECT_EQ(plan.style, StyleSpec{});
    EXPECT_EQ(plan.webcam->roundness, 0.08);
    EXPECT_EQ(plan.webcam->size, 0.24);
    EXPECT_EQ(plan.titleCard->duration, 2.2);
    EXPECT_FALSE(plan.focusMoments.has_value());
    EXPECT_THROW(decodePlan("{" + kLeast + "}"), Error); // no style
}

TEST(PlanDocuments, everyBackgroundHasItsForm)
{
    struct Case {
        std::string json;
        StyleSpec::Background background;
    };
    for (const auto& [json, background] : std::initializer_list<Case>{
             {R"({"linearGradient":{"bottom":"#0B0D12","top":"#20242E"}})",
              Background::LinearGradient{"#20242E", "#0B0D12"}},
             {R"({"color":{"_0":"#101014"}})", Background::Color{"#101014"}},
             {R"({"image":{"_0":"/p.png"}})", Background::Image{"/p.png"}},
             {R"({"gradient":{"angle":135,"colors":["#1","#2"]}})",
              Background::Gradient{{"#1", "#2"}, 135}},
             {R"({"radial":{"inner":"#1","outer":"#2"}})", Background::Radial{"#1", "#2"}},
             {R"({"blobs":{"base":"#1","colors":["#2"]}})", Background::Blobs{"#1", {"#2"}}},
             {R"({"pattern":{"ink":"#1","kind":"dots","paper":"#2","scale":1}})",
              Background::Pattern{"dots", "#1", "#2", 1}}}) {
        const EditPlan plan = decodePlan("{" + kLeast + R"(,"style":{"background":)" + json + "}}");
        EXPECT_EQ(plan.style.background, background) << json;
        EXPECT_EQ(decodePlan(encodePlan(plan)), plan) << json;
    }
}

TEST(PlanDocuments, aBackgroundIsExactlyOneCase)
{
    for (const std::string background :
         {"{}",
          R"({"color":{"_0":"#1"},"image":{"_0":"p"}})",
          R"({"swirl":{}})",
          R"({"radial":{"inner":"#1"}})"}) {
        EXPECT_THROW(
            decodePlan("{" + kLeast + R"(,"style":{"background":)" + background + "}}"), Error)
            << background;
    }
}

TEST(PlanConversions, ignoreRampsAndRespectCuts)
{
    EditPlan plan;
    EXPECT_EQ(plan.outputTime(3), 0);
    EXPECT_EQ(plan.sourceTime(3), 0);
    plan.timeRemap = {{1, 5, 1}, {8, 12, 2}};
    EXPECT_EQ(plan.outputTime(0), 0);
    EXPECT_EQ(plan.outputTime(6), 4); // inside the cut
    EXPECT_EQ(plan.outputTime(10), 5);
    EXPECT_EQ(plan.outputTime(99), 6);
    EXPECT_EQ(plan.sourceTime(-1), 1);
    EXPECT_EQ(plan.sourceTime(4), 5);
    EXPECT_EQ(plan.sourceTime(5), 10);
    EXPECT_EQ(plan.sourceTime(99), 12);
    plan.timeRemap = {{0, 2, 1}, {4, 6, 1}, {0, 2, 1}};
    EXPECT_EQ(plan.sourceTime(3), 2); // the first equals the last and ends the walk
}

} // namespace
} // namespace zento
