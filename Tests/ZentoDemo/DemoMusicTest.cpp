#include "Zento/Demo/DemoMusic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zento {
namespace {

TEST(DemoMusic, goesRoundWithoutAStepAndIsNeverTooLoud)
{
    const StereoSound music = demoMusic(20);
    ASSERT_EQ(music.left.size(), 20U * 44100);
    ASSERT_EQ(music.right.size(), music.left.size());
    float peak = 0;
    float step = 0;
    for (const auto* channel : {&music.left, &music.right}) {
        for (std::size_t i = 1; i < channel->size(); ++i) {
            peak = std::max(peak, std::abs((*channel)[i]));
            step = std::max(step, std::abs((*channel)[i] - (*channel)[i - 1]));
        }
    }
    EXPECT_LT(peak, 0.7F);
    EXPECT_GT(peak, 0.4F);
    EXPECT_LT(step, 0.15F);

    constexpr auto kLoop = static_cast<std::size_t>(16 * 60.0 / 112 * 44100);
    for (std::size_t i = 0; i + kLoop < music.left.size(); i += 97)
        ASSERT_EQ(music.left[i], music.left[i + kLoop]);
    EXPECT_TRUE(demoMusic(-1).left.empty());
}

} // namespace
} // namespace zento
