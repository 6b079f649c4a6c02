#include "ZentoRender/FrameValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zento {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

InputEvent event(double t, EventKind kind, Vec2 pos)
{
    InputEvent e;
    e.t = t;
    e.kind = kind;
    e.pos = pos;
    return e;
}

const std::vector<InputEvent> kEvents = {
    event(0.5, EventKind::Move, {5, 5}),
    event(1, EventKind::Click, {10, 10}),
    event(1.1, EventKind::MouseUp, {10, 10}),
    event(3, EventKind::Click, {30, 30}),
    event(4.5, EventKind::Move, {45, 45}),
};

/// Source [0, 2] at double speed, a cut, then [4, 6] as it is.
RemapCurve curveWithACut()
{
    return RemapCurve({{0, 2, 2}, {4, 6, 1}});
}

TEST(FrameValuesTest, ClicksInTheFilm)
{
    EditPlan plan;
    EXPECT_THAT(filmClicks(plan, kEvents, curveWithACut()), ElementsAre(FilmClick{0.5, {10, 10}}))
        << "the recording's stand in, and one lies in the cut";
    plan.clicks = {{5, {50, 50}}, {3, {1, 1}}, {0, {2, 2}}};
    const auto clicks = filmClicks(plan, kEvents, curveWithACut());
    ASSERT_EQ(clicks.size(), 2U) << "the plan's, in its order";
    EXPECT_DOUBLE_EQ(clicks[0].tOut, 2);
    EXPECT_EQ(clicks[0].pos, (Vec2{50, 50}));
    EXPECT_EQ(clicks[1], (FilmClick{0, {2, 2}}));
    plan.clicks = {{3, {1, 1}}};
    EXPECT_THAT(filmClicks(plan, kEvents, curveWithACut()), IsEmpty())
        << "a plan whose clicks are all cut does not fall back";
}

TEST(FrameValuesTest, TheTrackIsSortedAndFallsBackToMoves)
{
    EditPlan plan;
    EXPECT_THAT(
        cursorTrack(plan, kEvents),
        ElementsAre(CursorSample{0.5, {5, 5}, "arrow"}, CursorSample{4.5, {45, 45}, "arrow"}));
    plan.cursor = {{2, {2, 2}, "iBeam"}, {1, {1, 1}, "arrow"}};
    EXPECT_THAT(
        cursorTrack(plan, kEvents),
        ElementsAre(CursorSample{1, {1, 1}, "arrow"}, CursorSample{2, {2, 2}, "iBeam"}));
}

TEST(FrameValuesTest, Interpolate)
{
    const std::vector<CursorSample> track = {
        {1, {10, 0}, "arrow"},
        {2, {20, 100}, "iBeam"},
        {2, {40, 0}, "pointingHand"},
        {4, {80, 0}, "arrow"}};
    struct Case {
        const char* name;
        double t;
        CursorPlace expected;
    };
    const Case cases[] = {
        {"before", 0, {{10, 0}, "arrow"}},
        {"at the first", 1, {{10, 0}, "arrow"}},
        {"between, the style of the earlier", 1.75, {{17.5, 75}, "arrow"}},
        {"at two of one time, the later", 2, {{40, 0}, "pointingHand"}},
        {"after them", 3, {{60, 0}, "pointingHand"}},
        {"at the last", 4, {{80, 0}, "arrow"}},
        {"after", 9, {{80, 0}, "arrow"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(interpolate(track, c.t), c.expected) << c.name;
    EXPECT_EQ(interpolate({}, 1), std::nullopt);
}

TEST(FrameValuesTest, PulseAndRipplesAroundClicks)
{
    const std::vector<FilmClick> clicks = {{1, {1, 1}}, {1.2, {2, 2}}};
    struct Case {
        const char* name;
        double t;
        double pulse;
        std::vector<double> progress;
    };
    const Case cases[] = {
        {"long before", 0.5, 0, {}},
        {"rising", 0.925, 0.5, {}},
        {"at a click", 1, 1, {0}},
        {"the nearer click counts", 1.15, 2.0 / 3, {0.15 / 0.45}},
        {"two at once", 1.2, 1, {0.2 / 0.45, 0}},
        {"a pulse is over before its ripple", 1.4, 0, {0.4 / 0.45, 0.2 / 0.45}},
        {"the first has ended", 1.46, 0, {0.26 / 0.45}},
        {"long after", 3, 0, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(clickPulse(clicks, c.t), c.pulse, 1e-9);
        std::vector<double> progress;
        for (const Ripple& ripple : ripples(clicks, c.t))
            progress.push_back(ripple.progress);
        EXPECT_THAT(progress, testing::Pointwise(testing::DoubleNear(1e-9), c.progress));
    }
    EXPECT_EQ(clickPulse({}, 1), 0);
    EXPECT_THAT(ripples(std::vector<FilmClick>{{0, {}}}, 0.45), IsEmpty()) << "the end is strict";
}

TEST(FrameValuesTest, AnIdlePointerFadesAndComesBackAtOnce)
{
    struct Step {
        const char* name;
        double t;
        Vec2 pos;
        double pulse;
        double alpha;
    };
    const Step steps[] = {
        {"the first place is a move", 0.5, {100, 100}, 0, 1},
        {"still shown", 1.99, {100, 100}, 0, 1},
        {"fading", 2.2, {100, 100}, 0, 0.5},
        {"gone", 2.4, {100, 100}, 0, 0},
        {"three pixels are no move", 2.5, {103, 100}, 0, 0},
        {"nor three more: only the step before counts", 2.6, {106, 100}, 0, 0},
        {"a click", 2.7, {106, 100}, 0.1, 1},
        {"idle from the click on", 4.4, {106, 100}, 0, 0.5},
        {"a move", 4.5, {106, 103.1}, 0, 1},
    };
    PointerIdleness idleness;
    for (const Step& step : steps)
        EXPECT_NEAR(idleness.step(step.t, step.pos, step.pulse), step.alpha, 1e-9) << step.name;
    PointerIdleness untouched;
    EXPECT_EQ(untouched.step(2, {-1, -1}, 0), 0) << "never active counts as idle since the start";
}

} // namespace
} // namespace zento
