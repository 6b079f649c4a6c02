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

TEST(FrameValuesTest, TextsFadeAroundTheirTime)
{
    const std::vector<KeystrokeChip> chips = {{1, 2, "one"}, {1.9, 3, "two"}, {0, 5, "late"}};
    const std::vector<CaptionChip> captions = {{1, 2, "one"}, {2, 3, "two"}};
    const std::vector<ChapterMarker> chapters = {{1, "one"}, {3, "two"}};
    const std::span<const KeystrokeChip> twoChips(chips.begin(), 2);
    struct Case {
        const char* name;
        std::optional<FrameText> text;
        std::optional<FrameText> expected;
    };
    const Case cases[] = {
        {"chip before", keystrokeAt(twoChips, 0.8499), {}},
        {"chip coming", keystrokeAt(twoChips, 0.925), {{"one", 0.5}}},
        {"chip there", keystrokeAt(twoChips, 1), {{"one", 1}}},
        {"the later chip wins while it comes", keystrokeAt(twoChips, 1.825), {{"two", 0.5}}},
        {"chip to its end", keystrokeAt(twoChips, 3), {{"two", 1}}},
        {"chip going", keystrokeAt(twoChips, 3.1), {{"two", 0.5}}},
        {"chip gone", keystrokeAt(twoChips, 3.2001), {}},
        {"later in the plan, not in time", keystrokeAt(chips, 2.5), {{"late", 1}}},
        {"no chips", keystrokeAt({}, 1), {}},
        {"caption before", captionAt(captions, 0.8799), {}},
        {"caption coming", captionAt(captions, 0.94), {{"one", 0.5}}},
        {"caption there", captionAt(captions, 1.5), {{"one", 1}}},
        {"the next caption comes", captionAt(captions, 1.97), {{"two", 0.75}}},
        {"caption going", captionAt(captions, 3.125), {{"two", 0.5}}},
        {"caption gone", captionAt(captions, 3.2501), {}},
        {"chapter before", chapterAt(chapters, 0.9999), {}},
        {"chapter begins", chapterAt(chapters, 1), {{"one", 0}}},
        {"chapter coming", chapterAt(chapters, 1.125), {{"one", 0.5}}},
        {"chapter there", chapterAt(chapters, 2.9), {{"one", 1}}},
        {"the next chapter at once", chapterAt(chapters, 3), {{"two", 0}}},
        {"chapter going", chapterAt(chapters, 5.6), {{"two", 0.5}}},
        {"chapter gone", chapterAt(chapters, 5.8001), {}},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(c.text.has_value(), c.expected.has_value()) << c.name;
        if (!c.text)
            continue;
        EXPECT_EQ(c.text->text, c.expected->text) << c.name;
        EXPECT_NEAR(c.text->alpha, c.expected->alpha, 1e-9) << c.name;
    }
}

} // namespace
} // namespace zento
