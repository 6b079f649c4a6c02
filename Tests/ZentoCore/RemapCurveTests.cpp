#include "ZentoCore/Error.h"
#include "ZentoCore/RemapCurve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace zento {
namespace {

double slope(const RemapCurve& curve, double source)
{
    constexpr double kStep = 1e-5;
    return (curve.outputTime(source + kStep) - curve.outputTime(source - kStep)) / (2 * kStep);
}

TEST(RemapCurve, withoutSegmentsIsEmpty)
{
    const RemapCurve curve;
    EXPECT_EQ(curve.outputDuration(), 0);
    EXPECT_EQ(curve.sourceTime(1), 0);
    EXPECT_EQ(curve.outputTime(1), 0);
    EXPECT_FALSE(curve.contains(0));
}

TEST(RemapCurve, aLoneSegmentDoesNotRamp)
{
    const RemapCurve curve({{0, 10, 2}});
    EXPECT_EQ(curve.src().size(), 501U);
    EXPECT_DOUBLE_EQ(curve.outputDuration(), 5);
    EXPECT_DOUBLE_EQ(curve.outputTime(3), 1.5);
    EXPECT_EQ(RemapCurve({{0, 0.03, 1}}).src().size(), 3U);
}

TEST(RemapCurve, easesThroughTheMeanRateAtASeam)
{
    const RemapCurve curve({{0, 10, 1}, {10, 20, 4}});
    EXPECT_NEAR(slope(curve, 10), 0.625, 0.02); // one knot apart from the seam
    EXPECT_NEAR(slope(curve, 9.5), 1, 1e-6);
    EXPECT_NEAR(slope(curve, 12), 0.25, 1e-6);
    EXPECT_GT(std::abs(curve.outputDuration() - 12.5), 0.01);
    EXPECT_NEAR(curve.outputDuration(), 12.5, 0.2);
}

TEST(RemapCurve, aCutHasANearAndAFarSide)
{
    const RemapCurve curve({{0, 5, 1}, {8, 12, 1}});
    EXPECT_DOUBLE_EQ(curve.sourceTime(5), 8);
    EXPECT_DOUBLE_EQ(curve.outputTime(6), 5);
    EXPECT_FALSE(curve.contains(6));
    EXPECT_TRUE(curve.contains(8));
    EXPECT_FALSE(curve.contains(5)); // a knot belongs to the stretch behind it, here the cut
    EXPECT_TRUE(curve.contains(0));
    EXPECT_TRUE(curve.contains(12));
    EXPECT_FALSE(curve.contains(12.001));
}

TEST(RemapCurve, aGapOfAHairIsACut)
{
    const RemapCurve touching({{0, 5, 1}, {5 + 5e-10, 9, 2}});
    const RemapCurve apart({{0, 5, 1}, {5 + 1e-8, 9, 2}});
    EXPECT_EQ(touching.src().size() + 1, apart.src().size()); // a cut starts with a knot of its own
    EXPECT_NE(touching.outputDuration(), apart.outputDuration());
}

TEST(RemapCurve, isMonotoneInvertibleAndIndependentOfOrder)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> length(0.05, 3);
    std::uniform_real_distribution<double> speed(0.5, 5);
    for (int round = 0; round < 200; ++round) {
        std::vector<SpeedSegment> segments;
        double at = length(random);
        for (int i = 0; i < 8; ++i) {
            const double end = at + length(random);
            segments.push_back({at, end, speed(random)});
            at = random() % 2 == 0 ? end : end + length(random);
        }
        const RemapCurve curve(segments);
        ASSERT_TRUE(std::ranges::is_sorted(curve.src()));
        ASSERT_TRUE(std::ranges::is_sorted(curve.out()));
        for (double t = 0; t < curve.outputDuration(); t += 0.037) {
            ASSERT_NEAR(curve.outputTime(curve.sourceTime(t)), t, 1e-9);
        }
        std::ranges::shuffle(segments, random);
        const RemapCurve shuffled(segments);
        ASSERT_EQ(shuffled.src(), curve.src());
        ASSERT_EQ(shuffled.out(), curve.out());
    }
}

TEST(RemapCurve, refusesAnImpossibleLength)
{
    EXPECT_THROW(RemapCurve({{0, 1e300, 1}}), Error);
}

} // namespace
} // namespace zento
