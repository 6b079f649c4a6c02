#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Recording.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Commands/TargetChoice.h"
#include "ZentoCore/SessionBundle.h"

#include <array>
#include <iostream>

namespace zento {

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
