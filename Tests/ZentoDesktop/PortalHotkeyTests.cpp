#include "PrivateSession.h"
#include "WaylandStage/WaylandStage.h"
#include "Zento/Desktop/PortalHotkeys.h"

#include <gmock/gmock.h>

namespace zento::test {

namespace {

const KeyStroke kStroke{.key = "r", .super = true, .alt = true};

TEST(PortalTrigger, isWrittenAsThePortalsReadIt)
{
    struct Case {
        KeyStroke stroke;
        const char* trigger;
    };
    for (const Case& each :
         {Case{kStroke, "ALT+LOGO+r"},
          Case{{.key = "f5", .control = true, .shift = true}, "CTRL+SHIFT+F5"},
          Case{{.key = "return", .super = true}, "LOGO+Return"},
          Case{{.key = "f", .super = true}, "LOGO+f"},
          Case{{.key = "a key of ours", .super = true}, ""},
          Case{{}, ""}})
        EXPECT_EQ(portalTrigger(each.stroke), each.trigger) << each.stroke.key;
}

TEST(PortalHotkeys, areBoundTogetherAndAnewWhenOneChanges)
{
    WaylandStage stage;
    int missing = 0;
    int pressed = 0;
    PortalHotkeys hotkeys([&] { ++missing; });
    auto toggle = hotkeys.registerHotkey(kStroke, {"toggle", "Start or stop"}, [&] { ++pressed; });
    auto panel = hotkeys.registerHotkey(
        {.key = "p", .super = true}, {"panel", "Panel"}, [&] { pressed += 10; });
    ASSERT_TRUE(toggle && panel);
    EXPECT_EQ(hotkeys.registerHotkey(kStroke, {"toggle", "Again"}, [] {}), nullptr);
    const auto isBound = [&](const std::vector<std::string>& all) {
        return eventually([&] { return stage.shortcuts() == all; });
    };
    EXPECT_TRUE(isBound({"panel: Panel", "toggle: Start or stop"}));
    stage.press("panel");
    EXPECT_TRUE(eventually([&] { return pressed == 10; }));

    panel.reset(); // a key that is given back does nothing, whoever still knows it
    stage.press("panel");
    stage.press("toggle");
    EXPECT_TRUE(eventually([&] { return pressed == 11; }));

    panel = hotkeys.registerHotkey({.key = "p"}, {"panel", "The panel"}, [] {});
    EXPECT_TRUE(isBound({"panel: The panel", "toggle: Start or stop"}));
    EXPECT_TRUE(hotkeys.isAvailable());
    EXPECT_EQ(missing, 0);
}

} // namespace

} // namespace zento::test
