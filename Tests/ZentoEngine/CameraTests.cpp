#include "Log.h"
#include "ZentoEngine/CameraDirector.h"
#include "ZentoEngine/SoundCues.h"

#include <gmock/gmock.h>

namespace zento::test {

namespace {

using namespace EditPlanner;
using Kind = Moment::Kind;

/// Time and zoom of a keyframe; where it aims is looked at on its own.
using Shot = std::pair<double, double>;

struct CameraCase {
    const char* name;
    std::vector<Moment> moments;
    std::vector<Shot> expected; // of a film of 100 s that is the source
    Overrides overrides = {};
    std::optional<double> hero;
};

class Camera : public testing::TestWithParam<CameraCase> {};

TEST_P(Camera, MakesKeyframes)
{
    const CameraCase& c = GetParam();
    const auto script = buildCamera(c.moments, wholeFilm(), meta(), {}, c.overrides, c.hero);
    ASSERT_EQ(script.keyframes.size(), c.expected.size());
    for (std::size_t i = 0; i < c.expected.size(); ++i) {
        EXPECT_NEAR(script.keyframes[i].tOut, c.expected[i].first, 1e-9) << i;
        EXPECT_EQ(script.keyframes[i].zoom, c.expected[i].second) << i;
    }
}

Moment clickAt(double start, Vec2 pos = {500, 500})
{
    return moment(Kind::Click, start, start + 0.12, pos);
}

Moment focusing(double start, double width)
{
    Moment result = clickAt(start);
    result.focus = Rect{300, 300, width, 50};
    return result;
}

Moment edited(Moment result, std::optional<double> hold = {}, std::optional<double> zoom = {})
{
    result.editKey = result.start;
    result.hold = hold;
    result.forcedZoom = zoom;
    return result;
}

Overrides disabled(double time)
{
    Overrides result;
    result.disabledZoomSourceTimes = {time};
    return result;
}

const Moment kScroll = moment(Kind::Scroll, 12, 12.5);
const Shot kStart = {0, 1};

// The camera leads by 0.35 s; a zoom ends 0.5 s behind the last moment's end at 0.12 s.
INSTANTIATE_TEST_SUITE_P(
    Camera,
    Camera,
    testing::Values(
        CameraCase{"NoMoments", {}, {kStart}},
        CameraCase{"OneClick", {clickAt(10)}, {kStart, {9.65, 1.35}, {10.62, 1}}},
        CameraCase{"SmallFocus", {focusing(10, 50)}, {kStart, {9.65, 1.9}, {10.62, 1}}},
        CameraCase{"MiddleFocus", {focusing(10, 110)}, {kStart, {9.65, 1.6}, {10.62, 1}}},
        CameraCase{"WideFocus", {focusing(10, 600)}, {kStart, {9.65, 1.35}, {10.62, 1}}},
        CameraCase{"BesideTheStart", {clickAt(0.2)}, {kStart, {0, 1.35}, {0.82, 1}}},
        CameraCase{
            "SameShot",
            {clickAt(10), clickAt(11.5, {600, 500})},
            {kStart, {9.65, 1.35}, {12.12, 1}}},
        CameraCase{
            "TooSoon",
            {clickAt(10), clickAt(10.5, {800, 500})},
            {kStart, {9.65, 1.35}, {11.12, 1}}},
        CameraCase{
            "EditedIsNeverTooSoon",
            {clickAt(10), edited(clickAt(10.5, {800, 500}))},
            {kStart, {9.65, 1.35}, {10.15, 1.35}, {11.12, 1}}},
        CameraCase{
            "HeroAtTheSamePlace",
            {focusing(10, 50), focusing(10.5, 50)},
            {kStart, {9.65, 1.9}, {10.15, 1.9}, {11.12, 1}},
            {},
            10.45},
        CameraCase{"Disabled", {clickAt(10)}, {kStart}, disabled(10.35)},
        CameraCase{"ScrollPullsBack", {clickAt(10), kScroll}, {kStart, {9.65, 1.35}, {11.65, 1}}},
        CameraCase{
            "ScrollFromBarelyZoomed",
            {edited(clickAt(10), {}, 1.03), kScroll},
            {kStart, {9.65, 1.03}}},
        CameraCase{"Hold", {edited(clickAt(10), 2, 1.5)}, {kStart, {9.65, 1.5}, {12, 1}}},
        CameraCase{
            "LongHoldGoesWideBeforeItsEnd",
            {edited(clickAt(10), 3.5, 1.5)},
            {kStart, {9.65, 1.5}, {9.65 + 2.6, 1}, {13.5, 1}}},
        CameraCase{
            "PauseGoesWide",
            {clickAt(10), clickAt(15, {800, 500})},
            {kStart, {9.65, 1.35}, {9.65 + 2.6, 1}, {14.65, 1.35}, {15.62, 1}}},
        CameraCase{
            "ShortPauseStays",
            {clickAt(10), clickAt(13.75, {800, 500})},
            {kStart, {9.65, 1.35}, {13.4, 1.35}, {14.37, 1}}},
        CameraCase{"EndsZoomed", {clickAt(99.5)}, {kStart, {99.15, 1.35}}},
        CameraCase{"ClosesNearTheEnd", {clickAt(99)}, {kStart, {98.65, 1.35}, {99.2, 1}}}),
    [](const auto& each) { return each.param.name; });

TEST(Camera, AimsInsideTheFrame)
{
    const std::vector<Moment> moments = {clickAt(10, {-40, 990}), clickAt(20, {300, 400})};
    const auto script = buildCamera(moments, wholeFilm(), meta(), {}, {}, {});
    EXPECT_EQ(script.keyframes[1].center, (Vec2{120, 880}));
    EXPECT_THAT(
        script.keyframes,
        testing::Contains(testing::Field(&CameraKeyframe::center, Vec2{300, 400})));
    EXPECT_EQ(script.keyframes.back().center, (Vec2{500, 500}));
}

TEST(Camera, ListsEveryZoomAsTheUserKnowsIt)
{
    std::vector<Moment> moments = {clickAt(10), kScroll, clickAt(60)};
    moments.push_back(edited(clickAt(30), 2, 1.5));
    moments.back().editKey = 25;
    const RemapCurve remap({{0, 50, 1}}); // the last click is cut
    const auto script = buildCamera(moments, remap, meta(), {}, disabled(10), {});
    const FocusMoment found = {10, "click", {}, 1.35, {}, {}};
    const FocusMoment moved = {25, "click", {}, 1.5, 30, 2};
    EXPECT_EQ(script.focusMoments, (std::vector{found, moved}));
}

TEST(Camera, ManagesWithFewZoomLevels)
{
    const auto zooms = [](std::vector<double> levels) {
        PlanConfig config;
        config.zoomLevels = std::move(levels);
        const std::vector<Moment> moments = {focusing(10, 50), clickAt(50)};
        const auto focus = buildCamera(moments, wholeFilm(), meta(), config, {}, 50).focusMoments;
        return std::pair(focus[0].zoom, focus[1].zoom); // a plain one and the hero
    };
    EXPECT_EQ(zooms({}), std::pair(1.45, 1.9));
    EXPECT_EQ(zooms({1.2}), std::pair(1.45, 1.2));
    EXPECT_EQ(zooms({1, 1.5}), std::pair(1.5, 1.5));
}

TEST(SoundCues, WhooshAtBigChangesOnly)
{
    std::vector<CameraKeyframe> camera;
    // 1.9 - 1.6 lies just below 0.3 in doubles.
    for (const double zoom : {1.0, 1.35, 1.6, 1.9, 1.0, 1.6}) {
        camera.push_back({static_cast<double>(camera.size()), {}, zoom});
    }
    const std::vector<ClickMarker> clicks = {{7, {}}};
    const auto cues = soundCues(clicks, camera, wholeFilm(), {});
    using Cues = std::vector<SFXCue>;
    EXPECT_EQ(
        cues, (Cues{{7, "click", 1}, {1, "whoosh", 0.7}, {4, "whoosh", 0.7}, {5, "whoosh", 0.7}}));
    PlanConfig silent;
    silent.clickSFX = silent.whooshSFX = false;
    EXPECT_TRUE(soundCues(clicks, camera, wholeFilm(), silent).empty());
}

} // namespace

} // namespace zento::test
