#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Recording.h"
#include "Zento/Commands/Subcommands.h"
#include "ZentoCore/SessionBundle.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <span>

namespace zento {

namespace {

/// The target's words; which display a number means is for the desktop to say.
struct TargetChoice {
    std::optional<int> screen;
    std::optional<std::uint32_t> window;
    std::optional<Rect> area;
};

TargetChoice readTarget(const Arguments& arguments)
{
    const TargetChoice choice{
        .screen = arguments.read("--screen", readIndex),
        .window = arguments.read("--window", readWindow),
        .area = arguments.read("--area", readRect)};
    if (choice.screen.has_value() + choice.window.has_value() + choice.area.has_value() > 1) {
        throw UsageError("only one of --screen, --window and --area can be given");
    }
    return choice;
}

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
        throw Error(ErrorCode::kNoDisplay, "the area to record lies outside every display");
    }
    return Target::Area{area};
}

CaptureTarget chosenTarget(const TargetChoice& choice, Desktop& desktop)
{
    if (choice.screen) {
        return screenTarget(*choice.screen, desktop.displays());
    }
    if (choice.area) {
        return areaTarget(*choice.area, desktop.displays());
    }
    return choice.window ? CaptureTarget(Target::Window{*choice.window}) : Target::Display{};
}

} // namespace

void record(std::span<const std::string_view> words)
{
    constexpr std::array<OptionSpec, 7> kOptions{
        {{"--screen", "N"},
         {"--window", "ID"},
         {"--area", "X,Y,W,H"},
         {"--seconds", "S"},
         {"--microphone", ""},
         {"--camera", ""},
         {"--system-audio", ""}}};
    const Arguments arguments(words, kOptions);
    arguments.expectNone();
    const TargetChoice choice = readTarget(arguments);
    const auto seconds = arguments.read("--seconds", readPositive);
    Interruption interruption;
    const auto desktop = openDesktop();
    Recording recording(
        sessionsFolder() / bundleName(std::chrono::system_clock::now()),
        *desktop,
        chosenTarget(choice, *desktop),
        {.microphone = arguments.has("--microphone"),
         .camera = arguments.has("--camera"),
         .systemAudio = arguments.has("--system-audio")},
        interruption);
    std::cerr << "Recording; Control-C ends it.\n";
    interruption.wait(
        seconds ? std::optional(std::chrono::duration<double>(*seconds)) : std::nullopt);
    const auto bundle = recording.finish();
    std::cout << bundle.string() << '\n';
}

} // namespace zento
