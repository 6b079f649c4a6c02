#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/EditPlanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace zento {
namespace {

constexpr double kRate = 120; // of the log

SessionMeta pointerOnly(double duration)
{
    SessionMeta meta;
    meta.pixelWidth = 1920;
    meta.pixelHeight = 1080;
    meta.scaleFactor = 1;
    meta.duration = duration;
    meta.input = "pointer";
    return meta;
}

/// A pointer that rests at a place, goes to the next one within half a second, and so on.
class Way {
public:
    explicit Way(Vec2 start)
        : m_pos(start)
    {
    }

    Way& rest(double seconds)
    {
        go(m_pos, seconds);
        return *this;
    }

    Way& to(Vec2 place)
    {
        go(place, 0.5);
        return *this;
    }

    double time() const { return static_cast<double>(m_events.size()) / kRate; }
    const std::vector<InputEvent>& events() const { return m_events; }

private:
    void go(Vec2 place, double seconds)
    {
        const Vec2 from = m_pos;
        const int count = static_cast<int>(std::lround(seconds * kRate));
        for (int i = 1; i <= count; ++i) {
            const double share = static_cast<double>(i) / count;
            m_pos = {from.x + share * (place.x - from.x), from.y + share * (place.y - from.y)};
            InputEvent event;
            event.t = time();
            event.pos = m_pos;
            m_events.push_back(event);
        }
    }

    Vec2 m_pos;
    std::vector<InputEvent> m_events;
};

EditPlan
planOf(const std::vector<InputEvent>& events, const SessionMeta& meta, std::vector<double> changes)
{
    EditPlanner::PlanInput input;
    input.events = events;
    input.meta = meta;
    input.output = {1920, 1080, 60};
    input.pictureChanges = std::move(changes);
    return EditPlanner::plan(input);
}

std::vector<double> every(double step, double from, double to)
{
    std::vector<double> times;
    for (double t = from; t < to; t += step) {
        times.push_back(t);
    }
    return times;
}

std::vector<FocusMoment> focusesOf(const EditPlan& plan)
{
    return plan.focusMoments.value_or(std::vector<FocusMoment>());
}

bool keeps(const EditPlan& plan, double sourceTime)
{
    return RemapCurve(plan.timeRemap).contains(sourceTime);
}

TEST(PointerAttention, theCameraGoesWhereThePointerStaysAndTheWaitingIsCut)
{
    Way way({200, 200});
    way.rest(1).to({1400, 700}).rest(1.5);
    const double arrival = 1.5;
    way.rest(20).to({400, 300}).rest(2);
    const EditPlan plan = planOf(way.events(), pointerOnly(way.time()), {});
    const auto focuses = focusesOf(plan);
    ASSERT_EQ(focuses.size(), 2U);
    EXPECT_EQ(focuses[0].kind, "dwell");
    EXPECT_NEAR(focuses[0].sourceTime, arrival, 0.1);
    EXPECT_GT(focuses[0].zoom, 1.2);
    const auto aims = [&](Vec2 place) {
        return std::ranges::any_of(plan.camera, [&](const CameraKeyframe& key) {
            return key.zoom > 1.2
                   && std::hypot(key.center.x - place.x, key.center.y - place.y) < 200;
        });
    };
    EXPECT_TRUE(aims({1400, 700}));
    EXPECT_TRUE(aims({400, 300}));
    EXPECT_TRUE(keeps(plan, arrival));
    EXPECT_FALSE(keeps(plan, 12)) << "nothing happens for twenty seconds";
    EXPECT_LT(RemapCurve(plan.timeRemap).outputDuration(), 12);
    EXPECT_TRUE(plan.clicks.empty()) << "none is made up";
    EXPECT_TRUE(plan.sfx.empty() || plan.sfx.front().kind != "click");
}

TEST(PointerAttention, aPictureThatGoesOnChangingIsNotIdle)
{
    struct Case {
        const char* name;
        std::vector<double> changes;
        bool isKept;
    };
    Way way({200, 200});
    way.rest(1).to({1400, 700}).rest(22).to({400, 300}).rest(2);
    for (const Case& each :
         {Case{"nothing changes", {}, false},
          Case{"a caret blinks", every(0.53, 0, 26), false},
          Case{"somebody types", every(0.2, 3, 22), true},
          Case{"something moves", every(1.0 / 60, 3, 22), true},
          Case{"one change", {12}, false}}) {
        const EditPlan plan = planOf(way.events(), pointerOnly(way.time()), each.changes);
        EXPECT_EQ(keeps(plan, 12), each.isKept) << each.name;
    }
}

TEST(PointerAttention, whatIsADwell)
{
    struct Case {
        const char* name;
        Way way;
        std::vector<double> changes;
        std::size_t dwells;
    };
    for (const Case& each :
         {Case{"it never moves", Way({200, 200}).rest(10), {}, 0},
          Case{"it is on its way at first", Way({200, 200}).to({900, 500}).rest(2), {}, 1},
          Case{"a long rest", Way({200, 200}).rest(1).to({900, 500}).rest(1), {}, 1},
          Case{
              "a short rest", Way({200, 200}).rest(1).to({900, 500}).rest(0.5).to({90, 90}), {}, 0},
          Case{
              "a short rest that the picture answers",
              Way({200, 200}).rest(1).to({900, 500}).rest(0.5).to({90, 90}),
              {1.6},
              1},
          Case{
              "a hand that slows down before it arrives",
              Way({200, 200}).rest(1).to({820, 500}).to({860, 500}).to({895, 500}).rest(1),
              {},
              1},
          Case{
              "a journey to the next button",
              Way({200, 200}).rest(1).to({310, 200}).rest(2),
              {},
              1},
          Case{"a step aside", Way({200, 200}).rest(1).to({260, 200}).rest(2), {}, 0},
          Case{
              "a hand that is not still",
              Way({200, 200}).rest(1).to({900, 500}).rest(0.4).to({905, 503}).rest(0.4),
              {},
              1}}) {
        const EditPlan plan = planOf(each.way.events(), pointerOnly(each.way.time()), each.changes);
        EXPECT_EQ(focusesOf(plan).size(), each.dwells) << each.name;
    }
}

TEST(PointerAttention, aLogThatHasAllIsPlannedByWhatItSays)
{
    Way way({200, 200});
    way.rest(1).to({1400, 700}).rest(22).to({400, 300}).rest(2);
    SessionMeta meta = pointerOnly(way.time());
    meta.input.reset();
    const EditPlan plan = planOf(way.events(), meta, every(0.1, 0, 20));
    EXPECT_TRUE(focusesOf(plan).empty());
    EXPECT_EQ(plan.timeRemap.size(), 1U) << "without moments all of it is kept";
}

} // namespace
} // namespace zento
