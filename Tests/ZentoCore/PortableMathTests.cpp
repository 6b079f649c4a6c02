#include "ZentoCore/PortableMath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace zento {
namespace {

constexpr double kUnit = std::numeric_limits<double>::epsilon();

TEST(PortableMathTest, agreesWithTheLibraryToTheLastBits)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> within(-1, 1);
    for (int i = 0; i < 100'000; ++i) {
        const double u = within(random);
        EXPECT_NEAR(portable::exp(600 * u) / std::exp(600 * u), 1, 3 * kUnit) << 600 * u;
        EXPECT_NEAR(portable::exp2(20 * u) / std::exp2(20 * u), 1, 3 * kUnit) << 20 * u;
        EXPECT_NEAR(portable::sin(400 * u), std::sin(400 * u), 2 * kUnit) << 400 * u;
        EXPECT_NEAR(portable::tanh(3 * u), std::tanh(3 * u), 2 * kUnit) << 3 * u;
    }
    EXPECT_EQ(portable::exp(0), 1);
    EXPECT_EQ(portable::sin(0), 0);
    EXPECT_EQ(portable::tanh(400), 1);
    EXPECT_EQ(portable::tanh(-400), -1);
}

} // namespace
} // namespace zento
