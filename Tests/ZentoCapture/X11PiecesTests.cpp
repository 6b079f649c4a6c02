#include "ZentoCapture/Backends/AxRoles.h"
#include "ZentoCapture/Backends/ServerTime.h"
#include "ZentoCapture/Backends/XResources.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zento {
namespace {

TEST(ServerTimeTest, findsTheTimeNearestToNow)
{
    constexpr double kWrap = 4294967.296; // seconds
    for (const double now : {100.0, kWrap - 0.01, kWrap + 0.01, 7 * kWrap + 3}) {
        for (const double lag : {0.0, 0.002, 2.3, 3600.0, -0.001}) {
            const double time = std::floor((now - lag) * 1000) / 1000;
            if (time < 0) {
                continue;
            }
            const auto stamp = static_cast<std::uint32_t>(std::llround(time * 1000));
            EXPECT_NEAR(secondsOfServerTime(stamp, now), time, 1e-6) << now << " - " << lag;
        }
    }
}

TEST(XResourcesTest, onlyWholeScalesCount)
{
    struct Case {
        const char* resources;
        double scale;
    };
    const Case cases[] = {
        {"", 1},
        {"Xft.dpi:\t96\n", 1},
        {"Xft.antialias:\t1\nXft.dpi:\t192\nXft.hinting: 1\n", 2},
        {"Xft.dpi: 288", 3},
        {"Xft.dpi:\t191\n", 2},
        {"Xft.dpi:\t144\n", 1},
        {"Xft.dpi:\t48\n", 1},
        {"Xft.dpi:", 1},
        {"Xft.dpi: many\n", 1},
        {"My.Xft.dpi: 192\n", 1},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(scaleFromResources(row.resources), row.scale) << row.resources;
    }
}

TEST(AxRolesTest, knownRolesHaveTheirNameAndOthersKeepTheirs)
{
    struct Case {
        const char* role;
        const char* expected;
    };
    const Case cases[] = {
        {"push button", "AXButton"},
        {"check box", "AXCheckBox"},
        {"menu item", "AXMenuItem"},
        {"text", "AXTextField"},
        {"colour chooser", "AXColourChooser"},
        {"drawing area", "AXDrawingArea"},
        {"", "AXUnknown"},
        {"unknown", "AXUnknown"},
        {"--", "AXUnknown"},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(axRole(row.role), row.expected);
    }
}

} // namespace
} // namespace zento
