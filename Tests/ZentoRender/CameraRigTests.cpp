#include "ZentoRender/CameraRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace zento {
namespace {

constexpr double kFrame = 1.0 / 60;

std::vector<CameraRig::State> replay(CameraRig rig, int frames, double dt = kFrame)
{
    std::vector<CameraRig::State> states;
    states.reserve(static_cast<std::size_t>(frames));
    for (int i = 0; i < frames; ++i)
        states.push_back(rig.step(i * dt, dt));
    return states;
}

TEST(CameraRigTest, AtRestNothingMoves)
{
    struct Case {
        const char* name;
        std::vector<CameraKeyframe> keyframes;
        CameraRig::State expected;
    };
    const Case cases[] = {
        {"no keyframes", {}, {{960, 540}, 1}},
        {"one keyframe in force", {{0, {100, 900}, 2.5}}, {{100, 900}, 2.5}},
        {"one keyframe to come", {{99, {1.25, 0.5}, 1.1}}, {{1.25, 0.5}, 1.1}},
        {"before the first of two", {{50, {7, 8}, 2}, {60, {900, 500}, 3}}, {{7, 8}, 2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (const CameraRig::State& state : replay({c.keyframes, 1920, 1080}, 200))
            ASSERT_EQ(state, c.expected);
    }
}

TEST(CameraRigTest, FollowsTheContinuousSpringWithinTheStepsError)
{
    // A critically damped spring from rest at 0 towards 1: x(t) = 1 - (1 + wt) exp(-wt).
    CameraRig rig({{0, {0, 0}, 1}, {0, {1000, -500}, 2}}, 1920, 1080);
    // Both keyframes stand at 0: the rig starts on the first and aims at the last.
    constexpr double kDt = 1.0 / 6000;
    double t = 0;
    for (int i = 0; i < 6000; ++i) {
        const CameraRig::State state = rig.step(t, kDt);
        t += kDt;
        const double pan = 1 - (1 + 6.5 * t) * std::exp(-6.5 * t);
        const double zoom = 1 - (1 + 4.3 * t) * std::exp(-4.3 * t);
        ASSERT_NEAR(state.center.x, 1000 * pan, 1.5) << t;
        ASSERT_NEAR(state.center.y, -500 * pan, 0.75) << t;
        ASSERT_NEAR(state.zoom, 1 + zoom, 0.0015) << t;
    }
}

TEST(CameraRigTest, TheFirstStepUsesTheUpdatedVelocity)
{
    CameraRig rig({{0, {0, 0}, 1}, {1, {100, 0}, 1}}, 1920, 1080);
    // dt² ω² (target - value): zero with the velocity of before the step.
    EXPECT_DOUBLE_EQ(rig.step(1, 0.1).center.x, 0.1 * (0.1 * (6.5 * 6.5 * 100)));
}

TEST(CameraRigTest, AKeyframeTakesEffectAtItsInstant)
{
    const std::vector<CameraKeyframe> keyframes = {
        {2, {300, 0}, 1}, {1, {50, 0}, 1}, {1, {200, 0}, 1}, {0, {0, 0}, 1}};
    struct Case {
        const char* name;
        double tOut;
        double towards; // the sign of the first step
    };
    const Case cases[] = {
        {"just before", std::nextafter(1.0, 0.0), 0},
        {"at the instant, the later of two", 1, 200},
        {"at the next", 2, 300},
    };
    for (const Case& c : cases) {
        CameraRig rig(keyframes, 1920, 1080);
        EXPECT_DOUBLE_EQ(rig.step(c.tOut, 0.01).center.x, 0.01 * (0.01 * (6.5 * 6.5 * c.towards)))
            << c.name;
    }
}

TEST(CameraRigTest, ReplayIsDeterministicAndCopiesAreIndependent)
{
    const CameraRig rig({{0, {0, 0}, 1}, {0.5, {800, 300}, 2}, {1.5, {100, 900}, 1}}, 1920, 1080);
    const auto first = replay(rig, 150);
    EXPECT_EQ(first, replay(rig, 150));
    EXPECT_NE(first.back(), first.front());
}

TEST(CameraRigTest, OnlyTheReportedZoomIsFloored)
{
    // Were the spring itself floored, it would stand at 0.2 or above at every step and rise at
    // once.
    CameraRig rig({{0, {0, 0}, -1}, {1, {0, 0}, 1}}, 1920, 1080);
    int floored = 0;
    CameraRig::State state;
    for (int i = 0; i < 400; ++i) {
        state = rig.step(1 + i * kFrame, kFrame);
        EXPECT_GE(state.zoom, 0.2);
        floored += state.zoom == 0.2 ? 1 : 0;
    }
    EXPECT_GT(floored, 10);
    EXPECT_NEAR(state.zoom, 1, 1e-3);
}

TEST(CameraRigTest, NoTimeNoChange)
{
    CameraRig rig({{0, {0, 0}, 1}, {0, {500, 500}, 3}}, 1920, 1080);
    const CameraRig::State before = rig.step(0.1, kFrame);
    EXPECT_EQ(rig.step(0.2, 0), before);
}

} // namespace
} // namespace zento
