#include "Zento/Demo/PointerPath.h"

#include "Zento/Demo/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace zento {
namespace {

struct Way {
    std::string name;
    Vec2 from;
    Vec2 to;
    double targetSize = 20;
};

double distanceBetween(Vec2 a, Vec2 b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

double distance(const Way& way)
{
    return distanceBetween(way.from, way.to);
}

/// Pixels from one point of the path to the next.
std::vector<double> steps(const std::vector<PathPoint>& path)
{
    std::vector<double> result;
    for (std::size_t i = 1; i < path.size(); ++i) {
        result.push_back(distanceBetween(path[i - 1].position, path[i].position));
    }
    return result;
}

/// How far the path leaves the straight line.
double widestBend(const Way& way, const std::vector<PathPoint>& path)
{
    double widest = 0;
    for (const PathPoint& point : path) {
        const double cross = (way.to.x - way.from.x) * (point.position.y - way.from.y)
                             - (way.to.y - way.from.y) * (point.position.x - way.from.x);
        widest = std::max(widest, std::abs(cross) / distance(way));
    }
    return widest;
}

class PointerPathTest : public testing::TestWithParam<Way> {
protected:
    /// One property over many hands.
    template <typename Check>
    void forManySeeds(const Check& check)
    {
        for (std::uint64_t seed = 1; seed <= 40; ++seed) {
            SCOPED_TRACE(seed);
            Random random(seed);
            check(pointerPath(GetParam().from, GetParam().to, GetParam().targetSize, random));
        }
    }
};

TEST_P(PointerPathTest, goesFromTheOnePointToTheOtherExactly)
{
    forManySeeds([](const auto& path) {
        EXPECT_EQ(path.front(), (PathPoint{0, GetParam().from}));
        EXPECT_EQ(path.back().position, GetParam().to);
    });
}

TEST_P(PointerPathTest, isSampledLikeAMouse)
{
    forManySeeds([](const auto& path) {
        for (std::size_t i = 1; i < path.size(); ++i) {
            const double tick = path[i].time - path[i - 1].time;
            ASSERT_NEAR(tick, 1 / kPathRate, 0.15 / kPathRate) << "at " << i;
        }
    });
}

TEST_P(PointerPathTest, takesAboutTheTimeOfFittsLaw)
{
    const double expected = pointingSeconds(distance(GetParam()), GetParam().targetSize);
    forManySeeds([&](const auto& path) {
        EXPECT_GT(path.back().time, expected * 0.9);
        EXPECT_LT(path.back().time, expected * 1.15);
    });
}

TEST_P(PointerPathTest, neverJumps)
{
    // A minimum-jerk movement is at its fastest 1.875 times as fast as on the average; the bend
    // and the time left to the correction of a long way come on top, and the tremor.
    forManySeeds([](const auto& path) {
        const double average = distance(GetParam()) / path.back().time / kPathRate;
        EXPECT_LT(std::ranges::max(steps(path)), 1.875 * 1.45 * average + 1);
    });
}

/// Ways on which a tremor of half a pixel does not count.
class VisiblePointerPathTest : public PointerPathTest {};

TEST_P(VisiblePointerPathTest, isFastestInTheMiddleAndSlowAtBothEnds)
{
    forManySeeds([](const auto& path) {
        const std::vector<double> all = steps(path);
        const auto peak = std::ranges::max_element(all);
        const double position =
            static_cast<double>(peak - all.begin()) / static_cast<double>(all.size());
        EXPECT_GT(position, 0.2);
        EXPECT_LT(position, 0.65);
        EXPECT_LT(all.front(), 0.2 * *peak + 0.5);
        EXPECT_LT(all.back(), 0.2 * *peak + 0.5);
    });
}

TEST_P(VisiblePointerPathTest, bendsAsideButNotFar)
{
    forManySeeds([](const auto& path) {
        EXPECT_GT(widestBend(GetParam(), path), 0.01 * distance(GetParam()));
        EXPECT_LT(widestBend(GetParam(), path), 0.09 * distance(GetParam()) + 2);
    });
}

const auto kVisibleWays = testing::Values(
    Way{"acrossTheScreen", {40, 1000}, {1880, 60}, 30},
    Way{"toTheLeft", {1500, 500}, {400, 520}, 18},
    Way{"straightDown", {700, 100}, {700, 900}, 40},
    Way{"justLongEnoughForACorrection", {0, 0}, {221, 0}, 20},
    Way{"short", {500, 500}, {560, 470}, 20},
    Way{"ontoALargeTarget", {100, 100}, {900, 500}, 600});
const auto kTinyWays = testing::Values(
    Way{"onePixel", {10, 10}, {11, 10}, 20}, Way{"nowhere", {300, 300}, {300, 300}, 20});
const auto kNameOfRow = [](const auto& row) { return row.param.name; };

INSTANTIATE_TEST_SUITE_P(Ways, PointerPathTest, kVisibleWays, kNameOfRow);
INSTANTIATE_TEST_SUITE_P(TinyWays, PointerPathTest, kTinyWays, kNameOfRow);
INSTANTIATE_TEST_SUITE_P(Ways, VisiblePointerPathTest, kVisibleWays, kNameOfRow);

TEST(PointerPath, longWaysGoPastTheTargetAndComeBack)
{
    Random random(7);
    const std::vector<PathPoint> path = pointerPath({0, 500}, {1200, 500}, 20, random);
    const double furthest = std::ranges::max(path, {}, [](const PathPoint& point) {
                                return point.position.x;
                            }).position.x;
    EXPECT_GT(furthest, 1203);
    EXPECT_LT(furthest, 1216);
}

TEST(PointerPath, isTheSameForTheSameSeedAndAnotherForAnother)
{
    const auto path = [](std::uint64_t seed) {
        Random random(seed);
        return pointerPath({10, 10}, {800, 600}, 20, random);
    };
    EXPECT_EQ(path(3), path(3));
    EXPECT_NE(path(3), path(4));
}

} // namespace
} // namespace zento
