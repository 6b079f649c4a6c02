#include "Zento/Commands/TargetChoice.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <span>
#include <string>

namespace zento {

namespace {

/// Stands for the one the user picks in the desktop's dialog; no window has this number.
constexpr std::uint32_t kChosenWindow = 0;

CaptureTarget screenTarget(int number, std::span<const DisplayInfo> displays)
{
    const auto index = static_cast<std::size_t>(number);
    if (index >= displays.size()) {
        throw Error(
            ErrorCode::kNoDisplay,
            "there is no screen " + std::to_string(index) + ": this desktop has "
                + std::to_string(displays.size()) + ", counted from 0");
    }
    return Target::Screen{displays[index].id};
}

bool intersects(const Rect& a, const Rect& b)
{
    return a.x < b.x + b.w && b.x < a.x + a.w && a.y < b.y + b.h && b.y < a.y + a.h;
}

CaptureTarget areaTarget(const Rect& area, std::span<const DisplayInfo> displays)
{
    const auto shows = [&](const DisplayInfo& display) { return intersects(display.bounds, area); };
    if (std::ranges::none_of(displays, shows)) {
        throw Error(ErrorCode::kNoDisplay, "the area lies outside every display");
    }
    return Target::Area{area};
}

/// What the user is asked for in the desktop's dialog; nothing is known before.
CaptureTarget askedTarget(const TargetChoice& choice)
{
    if (choice.window) {
        if (*choice.window != kChosenWindow) {
            throw Error(
                ErrorCode::kWindowGone,
                "windows have no numbers on this desktop: --window pick asks which one");
        }
        return Target::Window{kChosenWindow};
    }
    if (choice.screen) {
        return Target::Screen{static_cast<std::uint32_t>(*choice.screen)};
    }
    return choice.area ? CaptureTarget(Target::Area{*choice.area}) : Target::Display{};
}

std::uint32_t readChosenWindow(std::string_view option, std::string_view text)
{
    return text == "pick" ? kChosenWindow : readWindow(option, text);
}

} // namespace

TargetChoice readTarget(const Arguments& arguments)
{
    const TargetChoice choice{
        .screen = arguments.read("--screen", readIndex),
        .window = arguments.read("--window", readChosenWindow),
        .area = arguments.read("--area", readRect)};
    if (choice.screen.has_value() + choice.window.has_value() + choice.area.has_value() > 1) {
        throw UsageError("only one of --screen, --window and --area can be given");
    }
    return choice;
}

CaptureTarget chosenTarget(const TargetChoice& choice, Desktop& desktop)
{
    if (desktop.choice() == Desktop::Choice::ByUser) {
        return askedTarget(choice);
    }
    if (choice.window == kChosenWindow) {
        throw Error(
            ErrorCode::kWindowGone,
            "this desktop has no dialog to pick a window in: --window takes its X11 number");
    }
    if (choice.screen) {
        return screenTarget(*choice.screen, desktop.displays());
    }
    if (choice.area) {
        return areaTarget(*choice.area, desktop.displays());
    }
    return choice.window ? CaptureTarget(Target::Window{*choice.window}) : Target::Display{};
}

} // namespace zento
