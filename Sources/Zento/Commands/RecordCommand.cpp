#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Recording.h"
#include "Zento/Commands/Subcommands.h"
#include "ZentoCore/SessionBundle.h"

#include <array>
#include <iostream>

namespace zento {

namespace {

CaptureTarget chosenTarget(const Arguments& arguments, Desktop& desktop)
{
    const auto screen = arguments.read("--screen", readIndex);
    if (!screen) {
        return Target::Display{};
    }
    const auto displays = desktop.displays();
    const auto index = static_cast<std::size_t>(*screen);
    if (index >= displays.size()) {
        throw Error(
            ErrorCode::kNoDisplay,
            "there is no screen " + std::to_string(index) + ": this desktop has "
                + std::to_string(displays.size()) + ", counted from 0");
    }
    return Target::Screen{displays[index].id};
}

} // namespace

void record(std::span<const std::string_view> words)
{
    constexpr std::array<OptionSpec, 2> kOptions{{{"--screen", "N"}, {"--seconds", "S"}}};
    const Arguments arguments(words, kOptions);
    arguments.expectNone();
    const auto seconds = arguments.read("--seconds", readPositive);
    Interruption interruption;
    const auto desktop = openDesktop();
    Recording recording(
        sessionsFolder() / bundleName(std::chrono::system_clock::now()),
        *desktop,
        chosenTarget(arguments, *desktop),
        interruption);
    std::cerr << "Recording; Control-C ends it.\n";
    interruption.wait(
        seconds ? std::optional(std::chrono::duration<double>(*seconds)) : std::nullopt);
    const auto bundle = recording.finish();
    std::cout << bundle.string() << '\n';
}

} // namespace zento
