#include "TestSupport/Random.h"
#include "Zento/Timeline/TimelineContents.h"
#include "Zento/Timeline/TimelineGestures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace zento {
namespace {

/// A strip 640 points wide. `segments` give the curve; none leaves times as they are.
TimelineScale strip(double recorded, const std::vector<SpeedSegment>& segments = {})
{
    TimelineScale scale = {.width = 640, .duration = recorded, .recorded = recorded};
    if (!segments.empty()) {
        scale.curve = std::make_shared<const RemapCurve>(segments);
        scale.duration = scale.curve->outputDuration();
    }
    return scale;
}

SavedOverrides trimmedEdits(double start, double end)
{
    SavedOverrides edits;
    edits.trimStart = start;
    edits.trimEnd = end;
    return edits;
}

TEST(TimelineScaleTest, PositionsAndTimesAnswerEachOther)
{
    const TimelineScale scale = strip(40);
    for (const double t : {0.0, 0.1, 13.7, 39.99, 40.0})
        EXPECT_NEAR(scale.timeAt(scale.position(t)), t, 1e-9);
    EXPECT_EQ(scale.timeAt(-5), 0);
    EXPECT_EQ(scale.timeAt(9999), 40);
    EXPECT_EQ(scale.position(-1), 0);
    EXPECT_EQ(scale.position(41), 640);
    const TimelineScale none; // nothing is known yet
    EXPECT_EQ(none.position(7), 0);
    EXPECT_LE(none.timeAt(7), 0.001);
    EXPECT_EQ(none.sourceTime(7), 7);
}

TEST(TimelineScaleTest, RulerTicksAreTheFirstThatAreWideEnough)
{
    struct Case {
        double duration;
        double width;
        double step;
    };
    const Case cases[] = {
        {40, 640, 5},
        {10, 640, 1},
        {9.9, 64, 10},
        {9.9, 63, 120},
        {3600, 640, 120},
        {0, 640, 1},
        {40, 10, 120}};
    for (const Case& c : cases) {
        TimelineScale scale = strip(c.duration);
        scale.width = c.width;
        EXPECT_EQ(rulerStep(scale), c.step) << c.duration << " s on " << c.width;
    }
}

TEST(TrimGestureTest, APressTakesTheHandleOrTheStretch)
{
    using Kind = TrimDrag::Kind;
    const TimelineScale scale = strip(64); // 10 points a second
    struct Case {
        const char* name;
        SavedOverrides edits;
        double x;
        TrimDrag drag;
    };
    const Case cases[] = {
        {"21 points from the start", trimmedEdits(10, 50), 121, {Kind::Start, 0}},
        {"22 points from it", trimmedEdits(10, 50), 122, {Kind::Move, 2.2}},
        {"21 points from the end", trimmedEdits(10, 50), 479, {Kind::End, 0}},
        {"both handles near: the start wins", trimmedEdits(10, 11), 108, {Kind::Start, 0}},
        {"left of all", trimmedEdits(10, 50), 5, {Kind::Start, 0}},
        {"right of all", trimmedEdits(10, 50), 600, {Kind::End, 0}},
        {"no trim: the end is the recording's", trimmedEdits(0, 0), 630, {Kind::End, 0}},
        {"a trim of nothing counts as none", trimmedEdits(0, 0.05), 630, {Kind::End, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TrimDrag drag = beginTrim(scale, c.edits, c.x);
        EXPECT_EQ(drag.kind, c.drag.kind);
        EXPECT_NEAR(drag.grabOffset, c.drag.grabOffset, 1e-9);
    }
}

TEST(TrimGestureTest, ADragTrims)
{
    using Kind = TrimDrag::Kind;
    // Cut from 20 to 30, then twice as fast: the strip is 20 + 17 s long but for the ramps.
    const TimelineScale curved = strip(64, {{0, 20, 1}, {30, 64, 2}});
    const TimelineScale plain = strip(64);
    struct Case {
        const char* name;
        const TimelineScale& scale;
        SavedOverrides edits;
        TrimDrag drag;
        double x;
        double translation;
        std::optional<std::pair<double, double>> trim;
    };
    const Case cases[] = {
        {"the start", plain, trimmedEdits(0, 0), {Kind::Start, 0}, 100, 100, {{10, 0}}},
        {"the start past the end",
         plain,
         trimmedEdits(0, 30),
         {Kind::Start, 0},
         500,
         1,
         {{29.5, 30}}},
        {"the start past an end that is not set",
         plain,
         trimmedEdits(0, 0),
         {Kind::Start, 0},
         999,
         1,
         {{63.5, 0}}},
        {"the start off the strip",
         plain,
         trimmedEdits(4, 30),
         {Kind::Start, 0},
         -50,
         1,
         {{0, 30}}},
        {"the end", plain, trimmedEdits(4, 0), {Kind::End, 0}, 300, 1, {{4, 30}}},
        {"the end past the start", plain, trimmedEdits(4, 30), {Kind::End, 0}, 0, 1, {{4, 4.5}}},
        {"a press in the kept stretch", plain, trimmedEdits(4, 30), {Kind::Move, 6}, 100, 4, {}},
        {"the stretch", plain, trimmedEdits(4, 30), {Kind::Move, 6}, 150, 50, {{9, 35}}},
        {"the stretch stops at the end",
         plain,
         trimmedEdits(4, 30),
         {Kind::Move, 6},
         640,
         5,
         {{38, 64}}},
        {"the stretch stops at the beginning",
         plain,
         trimmedEdits(4, 30),
         {Kind::Move, 6},
         0,
         -5,
         {{0, 26}}},
        {"the start over a cut",
         curved,
         trimmedEdits(0, 0),
         {Kind::Start, 0},
         curved.position(25),
         1,
         {{40, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto step = trimTo(c.scale, c.edits, c.drag, c.x, c.translation);
        ASSERT_EQ(step.has_value(), c.trim.has_value());
        if (step) {
            EXPECT_EQ(step->name, "Trim");
            EXPECT_NEAR(step->edits.trimStart, c.trim->first, 1e-6);
            EXPECT_NEAR(step->edits.trimEnd, c.trim->second, 1e-6);
        }
    }
}

TEST(TrimGestureTest, AMovedStretchKeepsItsLengthOnTheStrip)
{
    const TimelineScale scale = strip(64, {{0, 20, 1}, {30, 64, 2}});
    const SavedOverrides edits = trimmedEdits(5, 15);
    const TrimDrag drag = beginTrim(scale, edits, scale.position(10));
    for (const double x : {200.0, 333.0, 480.0, 639.0}) {
        const SavedOverrides after = trimTo(scale, edits, drag, x, 99)->edits;
        EXPECT_NEAR(trimEndOnStrip(scale, after) - scale.outputTime(after.trimStart), 10, 1e-6)
            << x;
    }
    const SavedOverrides whole = resetTrim(scale, edits).edits;
    EXPECT_FALSE(isTrimmed(scale, whole));
    EXPECT_TRUE(whole.overrides(64).removedRanges.empty());
    EXPECT_TRUE(isTrimmed(scale, edits));
}

TEST(TrimGestureTest, ArrowKeysDoWhatADragOfThatLengthDoes)
{
    const TimelineScale scale = strip(64, {{0, 20, 1}, {30, 64, 2}});
    const SavedOverrides edits = trimmedEdits(5, 15);
    for (const auto kind : {TrimDrag::Kind::Start, TrimDrag::Kind::End}) {
        const double from = kind == TrimDrag::Kind::Start ? 5 : 15;
        const auto dragged = trimTo(scale, edits, {kind, 0}, scale.position(from + 0.1), 1);
        const EditStep nudged = nudgeTrim(scale, edits, kind, 0.1);
        EXPECT_NEAR(nudged.edits.trimStart, dragged->edits.trimStart, 1e-9);
        EXPECT_NEAR(nudged.edits.trimEnd, dragged->edits.trimEnd, 1e-9);
    }
    EXPECT_NEAR(nudgeTrim(scale, edits, TrimDrag::Kind::Move, 1).edits.trimStart, 6, 1e-9);
}

TEST(ZoomBlockTest, TheRightEdgeStretchesAndTheRestMoves)
{
    struct Case {
        double width;
        double edge;
    };
    for (const Case& c : {Case{9, 4}, Case{10, 4}, Case{21, 7}, Case{60, 10}, Case{300, 10}}) {
        EXPECT_EQ(zoomDragAt(c.width, c.width - c.edge), ZoomDrag::Move) << c.width;
        EXPECT_EQ(zoomDragAt(c.width, c.width - c.edge + 0.01), ZoomDrag::Resize) << c.width;
    }
}

TEST(ZoomBlockTest, ADropCommitsTheMovement)
{
    const TimelineScale scale = strip(64);
    ZoomBar bar = {.sourceTime = 10, .effTime = 12.35, .tOut = 12, .tOutEnd = 14};
    const auto drop = [&](ZoomDrag kind, double deltaX) {
        return endZoomDrag(scale, {}, bar, {kind, deltaX}).edits.zoomEdits.at(0);
    };
    EXPECT_NEAR(*drop(ZoomDrag::Move, 50).newSourceTime, 17.35, 1e-9);
    EXPECT_NEAR(*drop(ZoomDrag::Move, -999).newSourceTime, 0.35, 1e-9); // its lead stays
    EXPECT_NEAR(*drop(ZoomDrag::Resize, 20).hold, 3.65, 1e-9);
    EXPECT_EQ(*drop(ZoomDrag::Resize, -500).hold, 0.4);
    // Where it stood: exactly, whatever the strip's width rounds to.
    test::Random random(5);
    for (int i = 0; i < 200; ++i) {
        const TimelineScale any = {
            .width = random.uniform(50, 2000),
            .duration = 64,
            .curve = std::make_shared<const RemapCurve>(
                std::vector<SpeedSegment>{{0, 20, 1.7}, {31, 64, 0.9}}),
            .recorded = 64};
        bar.tOut = random.uniform(0, 40);
        EXPECT_EQ(
            endZoomDrag(any, {}, bar, {ZoomDrag::Move, 0}).edits.zoomEdits[0].newSourceTime,
            bar.effTime);
    }
    EXPECT_NEAR(
        *nudgeZoom(scale, {}, bar, ZoomDrag::Resize, 0.1).edits.zoomEdits[0].hold,
        bar.tOutEnd + 0.1 - bar.effTime,
        1e-9);
}

TEST(ZoomBlockTest, IsDrawnWhereItWillBe)
{
    const TimelineScale scale = strip(64);
    const ZoomBar bar = {.tOut = 12, .tOutEnd = 14};
    struct Case {
        std::optional<ZoomMovement> movement;
        double x;
        double width;
    };
    const Case cases[] = {
        {{}, 120, 20},
        {ZoomMovement{ZoomDrag::Move, -30}, 90, 20},
        {ZoomMovement{ZoomDrag::Resize, 15}, 120, 35},
        {ZoomMovement{ZoomDrag::Resize, -15}, 120, 10}, // never too narrow to take hold of
    };
    for (const Case& c : cases) {
        const BarFrame frame = barFrame(scale, bar, c.movement);
        EXPECT_NEAR(frame.x, c.x, 1e-9);
        EXPECT_NEAR(frame.width, c.width, 1e-9);
    }
    EXPECT_EQ(zoomTint(1), 0);
    EXPECT_NEAR(zoomTint(1.55), 0.5, 1e-9);
    EXPECT_EQ(zoomTint(3), 1);
}

/// A plan without cuts, so that strip and source time are one.
EditPlan planOf(std::vector<CameraKeyframe> camera, std::vector<FocusMoment> moments)
{
    EditPlan plan;
    plan.timeRemap = {{0, 60, 1}};
    plan.camera = std::move(camera);
    plan.focusMoments = std::move(moments);
    return plan;
}

TEST(ZoomBarsTest, LieWhereTheCameraIsIn)
{
    const std::vector<CameraKeyframe> camera = {
        {0, {}, 1},
        {9.7, {}, 1.6},
        {13, {}, 1.6},
        {15, {}, 1.9},
        {17, {}, 1},
        {50, {}, 1.5},
        {52, {}, 1.5}};
    const auto moment = [](double t, double zoom) {
        return FocusMoment{.sourceTime = t, .kind = "click", .zoom = zoom};
    };
    FocusMoment held = moment(10, 1.6);
    held.hold = 2;
    FocusMoment movedAway = moment(10, 1.6);
    movedAway.effectiveSourceTime = 30;
    FocusMoment added = moment(10, 1.6);
    added.kind = "added";
    struct Case {
        const char* name;
        FocusMoment moment;
        bool isOff;
        std::vector<std::pair<double, double>> bar;
    };
    const Case cases[] = {
        {"until the camera is wide again", moment(10, 1.6), false, {{9.7, 17}}},
        {"until a lesser zoom", moment(15.3, 1.9), false, {{15, 17}}},
        {"with a hold of its own", held, false, {{9.7, 12}}},
        {"where the user moved it, away from any keyframe", movedAway, false, {{29.65, 31.25}}},
        {"switched off: the usual length", moment(10, 1.6), true, {{9.65, 11.25}}},
        {"no end after it: the next keyframe", moment(50.2, 1.5), false, {{50, 52}}},
        {"the last keyframe: the end", moment(52.3, 1.5), false, {{52, 60}}},
        {"near the beginning", moment(0.1, 1.5), true, {{0, 1.6}}},
        {"near the end", moment(60, 1.5), true, {{59.65, 60}}},
        {"hardly a zoom", moment(10, 1.01), false, {}},
        {"added by hand", added, false, {{9.7, 17}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const EditPlan plan = planOf(camera, {c.moment});
        Overrides overrides;
        if (c.isOff)
            overrides.disabledZoomSourceTimes = {c.moment.sourceTime + 0.3};
        const auto bars = zoomBars(plan, RemapCurve(plan.timeRemap), 60, overrides);
        ASSERT_EQ(bars.size(), c.bar.size());
        for (std::size_t i = 0; i < bars.size(); ++i) {
            EXPECT_NEAR(bars[i].tOut, c.bar[i].first, 1e-9);
            EXPECT_NEAR(bars[i].tOutEnd, c.bar[i].second, 1e-9);
            EXPECT_EQ(bars[i].enabled, !c.isOff);
            EXPECT_EQ(bars[i].added, c.moment.kind == "added");
            EXPECT_EQ(bars[i].sourceTime, c.moment.sourceTime);
        }
    }
}

TEST(ZoomBarsTest, NeverOverlap)
{
    test::Random random(11);
    for (int round = 0; round < 50; ++round) {
        std::vector<FocusMoment> moments;
        for (int i = 0; i < 30; ++i)
            moments.push_back({.sourceTime = random.uniform(0, 60), .kind = "click", .zoom = 1.5});
        const EditPlan plan = planOf({}, std::move(moments));
        const auto bars = zoomBars(plan, RemapCurve(plan.timeRemap), 60, {});
        for (std::size_t i = 0; i + 1 < bars.size(); ++i) {
            EXPECT_LE(bars[i].tOut, bars[i + 1].tOut);
            EXPECT_GE(bars[i].tOutEnd, bars[i].tOut + 0.15 - 1e-9);
            if (bars[i + 1].tOut > bars[i].tOut + 0.19) {
                EXPECT_LE(bars[i].tOutEnd, bars[i + 1].tOut);
            }
        }
    }
}

TEST(TimelineContentsTest, CutsAreMarkedOnTheStrip)
{
    const std::vector<SpeedSegment> remap = {{1, 5, 2}, {5.005, 9, 1}, {20, 21, 1}};
    const auto cuts = cutMarks(remap);
    ASSERT_EQ(cuts.size(), 1U); // a seam is no cut, nor is the end
    EXPECT_NEAR(cuts[0].tOut, 2 + 3.995, 1e-9);
    EXPECT_EQ(cuts[0].cutAfter, 9);
}

TEST(TimelineContentsTest, BeatsAreHeardFromTheTitleCardOn)
{
    struct Case {
        const char* name;
        HeardBeats beats;
        std::vector<double> times;
    };
    const std::vector<Case> cases = {
        {"from the film's start", {0, 0.5, 1.6}, {0, 0.5, 1, 1.5}},
        {"under a card of whole beats", {-1, 0.5, 1}, {0, 0.5}},
        {"under a card that ends between beats", {-0.7, 0.5, 1}, {0.3, 0.8}},
        {"the music ends first", {-2, 0.5, -0.5}, {}},
        {"no pulse", {0, 0, 3}, {}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto times = c.beats.times();
        ASSERT_EQ(times.size(), c.times.size());
        for (std::size_t i = 0; i < times.size(); ++i) {
            EXPECT_NEAR(times[i], c.times[i], 1e-9);
            EXPECT_TRUE(c.beats.isOn(times[i] + 0.009));
            EXPECT_FALSE(c.beats.isOn(times[i] + 0.02));
        }
    }
    EXPECT_FALSE((HeardBeats{0, 0.5, 1.6}).isOn(2)); // nothing is heard there
}

TEST(TimelineContentsTest, BeatsTooCloseToTellApartAreThinned)
{
    const std::vector<double> beats = HeardBeats{0, 0.5, 50}.times();
    for (const double points : {0.01, 0.5, 1.0, 2.9, 6.0, 40.0}) {
        const auto shown = thinnedBeats(beats, points);
        ASSERT_FALSE(shown.empty());
        EXPECT_EQ(shown[0], 0);
        for (std::size_t i = 1; i < shown.size(); ++i)
            EXPECT_GE((shown[i] - shown[i - 1]) / 0.5 * points, 6);
    }
    EXPECT_EQ(thinnedBeats(beats, 6), beats);
    EXPECT_TRUE(thinnedBeats({}, 3).empty());
}

TEST(TimelineContentsTest, WordsKeepTheirPlaceInTheTranscript)
{
    const std::vector<TranscriptSegment> transcript = {{1, 2, "one"}, {3, 4, " \n"}, {5, 6, "two"}};
    const RemapCurve curve({{0, 10, 2}});
    const auto words = timelineWords(transcript, &curve);
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(words[1], (TimelineWord{.index = 2, .tOut = 2.5, .tOutEnd = 3, .text = "two"}));
    EXPECT_EQ(timelineWords(transcript, nullptr)[1].tOut, 5);
    const auto times = thumbnailTimes(curve, 5, 18);
    EXPECT_EQ(times.size(), 18U);
    EXPECT_NEAR(times[0], 5.0 / 36 * 2, 1e-9);
    EXPECT_TRUE(thumbnailTimes(curve, 0, 18).empty());
}

} // namespace
} // namespace zento
