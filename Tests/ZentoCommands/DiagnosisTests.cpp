#include "Zento/Commands/Diagnosis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zento {
namespace {

Circumstances onWayland()
{
    return {
        .services =
            {.facts = {.sessionType = "wayland", .waylandDisplay = "wayland-1", .screenCast = 4},
             .hasDisplay = true,
             .hasSessionBus = true,
             .portals = {.screenCast = 4, .screenshot = 2, .globalShortcuts = 1},
             .offer = {.monitors = true, .windows = true, .pointerAsMetadata = true},
             .hasPipeWire = true,
             .input = InputAccess::Devices,
             .hasAccessibility = true},
        .hasSpeechModel = true,
        .recordings = "/home/somebody/Videos/Zento",
        .freeBytes = 50'000'000'000};
}

Circumstances onX11()
{
    Circumstances all = onWayland();
    all.services.facts = {.sessionType = "x11", .x11Display = ":0"};
    all.services.portals = {};
    all.services.offer = {};
    all.services.input = InputAccess::Server;
    return all;
}

Finding findingOn(const std::string& subject, const Circumstances& all)
{
    const auto findings = diagnose(all);
    const auto found = std::ranges::find(findings, subject, &Finding::subject);
    return found == findings.end() ? Finding{} : *found;
}

TEST(Diagnosis, aDesktopThatHasAllIsWell)
{
    for (const Circumstances& all : {onWayland(), onX11()}) {
        EXPECT_TRUE(canRecord(all));
        for (const Finding& finding : diagnose(all)) {
            EXPECT_EQ(finding.health, Health::Good) << line(finding);
            EXPECT_TRUE(finding.advice.empty()) << line(finding);
        }
    }
}

TEST(Diagnosis, whatIsNotThereIsNamedWithWhatToDo)
{
    struct Case {
        const char* name;
        Circumstances all;
        std::function<void(Circumstances&)> spoil;
        const char* subject;
        Health health;
        const char* advice;
    };
    const std::vector<Case> cases{
        {"no desktop",
         onX11(),
         [](auto& all) {
             all.services.facts = {};
             all.services.hasDisplay = false;
             all.services.input = InputAccess::None;
         },
         "display",
         Health::Missing,
         "session"},
        {"a server that has gone",
         onX11(),
         [](auto& all) { all.services.hasDisplay = false; },
         "display",
         Health::Missing,
         "session"},
        {"no portal where it is needed",
         onWayland(),
         [](auto& all) { all.services.portals.screenCast = 0; },
         "screen portal",
         Health::Missing,
         "xdg-desktop-portal"},
        {"a portal that does not tell the pointer",
         onWayland(),
         [](auto& all) { all.services.offer.pointerAsMetadata = false; },
         "screen portal",
         Health::Limited,
         "pointer"},
        {"devices that may not be read",
         onWayland(),
         [](auto& all) { all.services.input = InputAccess::None; },
         "input",
         Health::Limited,
         "usermod -aG input"},
        {"no hot keys of the desktop",
         onWayland(),
         [](auto& all) { all.services.portals.globalShortcuts = 0; },
         "hot keys",
         Health::Limited,
         "zento record --toggle"},
        {"no PipeWire under Wayland",
         onWayland(),
         [](auto& all) { all.services.hasPipeWire = false; },
         "PipeWire",
         Health::Missing,
         "install pipewire"},
        {"no PipeWire under X11",
         onX11(),
         [](auto& all) { all.services.hasPipeWire = false; },
         "PipeWire",
         Health::Limited,
         "install pipewire"},
        {"an encoder",
         onX11(),
         [](auto& all) { all.missingEncoders = {"libx264"}; },
         "encoders",
         Health::Missing,
         "FFmpeg"},
        {"a typeface",
         onX11(),
         [](auto& all) { all.missingTypefaces = {"Inter"}; },
         "fonts",
         Health::Limited,
         "fonts-inter"},
        {"a disk that is almost full",
         onX11(),
         [](auto& all) { all.freeBytes = 300'000'000; },
         "disk",
         Health::Missing,
         "make room"},
        {"a disk that fills up soon",
         onX11(),
         [](auto& all) { all.freeBytes = 3'000'000'000; },
         "disk",
         Health::Limited,
         "make room"}};
    for (Case each : cases) {
        each.spoil(each.all);
        const Finding finding = findingOn(each.subject, each.all);
        EXPECT_EQ(finding.health, each.health) << each.name;
        EXPECT_THAT(finding.advice, testing::HasSubstr(each.advice)) << each.name;
        EXPECT_EQ(canRecord(each.all), each.health != Health::Missing) << each.name;
        EXPECT_THAT(line(finding), testing::Not(testing::HasSubstr("\n"))) << each.name;
    }
}

TEST(Diagnosis, aBareMachineIsSentToWhatItNeedsFirst)
{
    Circumstances all = onX11();
    all.services = {};
    EXPECT_FALSE(canRecord(all));
    for (const auto& [subject, advice] :
         {std::pair{"hot keys", "see display"},
          std::pair{"screenshots", "see display"},
          std::pair{"accessibility", "see session bus"}}) {
        EXPECT_EQ(findingOn(subject, all).advice, advice) << subject;
    }
    for (const Finding& finding : diagnose(all))
        EXPECT_THAT(finding.what, testing::Not(testing::HasSubstr("X server"))) << line(finding);
}

TEST(Diagnosis, theKindOfDesktopIsWhatIsReallyThere)
{
    struct Case {
        const char* name;
        SessionFacts facts;
        DesktopKind kind;
    };
    const std::vector<Case> cases{
        {"X11", {"x11", "", ":0", 0}, DesktopKind::X11},
        {"an X server and nothing said", {"", "", ":7", 0}, DesktopKind::X11},
        {"Wayland with its X server", {"wayland", "wayland-0", ":0", 4}, DesktopKind::Wayland},
        {"Wayland alone", {"", "wayland-0", "", 1}, DesktopKind::Wayland},
        {"Wayland that names no socket", {"wayland", "", "", 4}, DesktopKind::Wayland},
        {"Wayland without a portal", {"wayland", "wayland-0", ":0", 0}, DesktopKind::None},
        {"a compositor in a window of X11", {"x11", "wayland-1", ":0", 4}, DesktopKind::X11},
        {"an X server within a Wayland session", {"wayland", "", ":9", 4}, DesktopKind::X11},
        {"a console", {"tty", "", "", 0}, DesktopKind::None}};
    for (const Case& each : cases) {
        EXPECT_EQ(desktopKind(each.facts), each.kind) << each.name;
    }
}

} // namespace
} // namespace zento
