#include "ZentoCapture/Backends/AxRoles.h"
#include "ZentoCapture/Backends/PixelTarget.h"
#include "ZentoCapture/Backends/ServerTime.h"
#include "ZentoCapture/Backends/X11Monitors.h"
#include "ZentoCapture/Backends/XResources.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

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

TEST(ShownPartsTest, areWhatMonitorsAndTheScreenHave)
{
    struct Case {
        const char* name;
        PixelRect rect;
        PixelRect root;
        std::vector<PixelRect> monitors;
        std::vector<PixelRect> parts;
    };
    const PixelRect left{0, 0, 100, 80};
    const PixelRect right{100, 0, 60, 50};
    const PixelRect root{0, 0, 160, 80};
    const Case cases[] = {
        {"one monitor", left, root, {left, right}, {left}},
        {"over both", {90, 10, 20, 60}, root, {left, right}, {{90, 10, 10, 60}, {100, 10, 10, 40}}},
        {"unplugged", right, root, {left}, {}},
        {"screen too small", left, {0, 0, 50, 90}, {left, right}, {{0, 0, 50, 80}}},
        {"mirrored", left, root, {left, left, {0, 0, 50, 50}}, {left}},
        {"mirrored, the smaller first", left, root, {{0, 0, 50, 50}, left}, {left}},
        {"no screen", left, {}, {left}, {}},
    };
    for (const Case& row : cases) {
        std::vector<X11Monitor> monitors;
        for (const PixelRect& rect : row.monitors) {
            monitors.push_back({.rect = rect});
        }
        EXPECT_EQ(shownParts(row.rect, row.root, monitors), row.parts) << row.name;
    }
}

TEST(PixelTargetTest, drawsWhatIsSharedAndNothingElse)
{
    // A target of 4 x 3 at (10, 20) and a source of 3 x 3 at (12, 19).
    std::vector<std::uint32_t> pixels(12, 0xFF204060);
    const PixelTarget target{pixels.data(), {10, 20, 4, 3}};
    std::vector<std::uint32_t> ink(9, 0x80800000); // half of red
    const PixelTarget source{ink.data(), {12, 19, 3, 3}};
    copyPixels(target, source, {0, 0, 100, 21});
    blendPixels(target, source, {0, 21, 100, 100});
    EXPECT_EQ(
        pixels,
        (std::vector<std::uint32_t>{
            0xFF204060,
            0xFF204060,
            0x80800000,
            0x80800000, //
            0xFF204060,
            0xFF204060,
            0xFF902030,
            0xFF902030, //
            0xFF204060,
            0xFF204060,
            0xFF204060,
            0xFF204060}));
}

TEST(PixelTargetTest, bridgesFromWhatIsKnown)
{
    struct Case {
        const char* name;
        int y; // of a hole two pixels high in a column of four
        std::vector<std::uint32_t> bridged;
    };
    const Case cases[] = {
        {"between", 1, {0x000900, 0x000600, 0x000300, 0x000000}},
        {"at the top", 0, {0x000300, 0x000300, 0x000300, 0x000000}},
        {"at the bottom", 2, {0x000900, 0x000600, 0x000600, 0x000600}},
        {"reaching out", -1, {0x000600, 0x000600, 0x000300, 0x000000}},
    };
    for (const Case& row : cases) {
        std::vector<std::uint32_t> column{0x000900, 0x000600, 0x000300, 0x000000};
        bridgePixels({column.data(), {0, 0, 1, 4}}, {0, row.y, 1, 2});
        EXPECT_EQ(column, row.bridged) << row.name;
    }
    std::vector<std::uint32_t> all(4, 0x00FFFF);
    bridgePixels({all.data(), {0, 0, 1, 4}}, {0, 0, 1, 4});
    EXPECT_EQ(all, std::vector<std::uint32_t>(4, 0));
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
