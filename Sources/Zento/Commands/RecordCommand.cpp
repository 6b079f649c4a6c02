#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Recording.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Commands/TargetChoice.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoCore/UserFolders.h"

#include <array>
#include <filesystem>
#include <iostream>
#include <string>

namespace zento {

namespace {

/// Says something on standard error that this user has not been told before.
void tellOnce(const std::string& sentence)
{
    const std::filesystem::path file = userStateFolder() / "Zento" / "told";
    std::string told;
    try {
        told = readFile(file);
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): nothing has been told yet
    }
    if (told.contains(sentence)) {
        return;
    }
    std::cerr << sentence << '\n';
    try {
        makeFolder(file.parent_path());
        writeFile(file, told + sentence + '\n');
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): it is told again next time
    }
}

} // namespace

void record(std::span<const std::string_view> words)
{
    constexpr std::array<OptionSpec, 8> kOptions{
        {{"--screen", "N"},
         {"--window", "ID"},
         {"--area", "X,Y,W,H"},
         {"--seconds", "S"},
         {"--microphone", ""},
         {"--camera", ""},
         {"--system-audio", ""},
         {"--toggle", ""}}};
    const Arguments arguments(words, kOptions);
    if (arguments.has("--toggle")) {
        if (words.size() > 1) {
            throw UsageError("--toggle stands alone: the application has its own settings");
        }
        toggle({});
        return;
    }
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
    if (const auto shortcoming = desktop->shortcoming()) {
        tellOnce(*shortcoming);
    }
    std::cerr << "Recording; Control-C ends it.\n";
    interruption.wait(
        seconds ? std::optional(std::chrono::duration<double>(*seconds)) : std::nullopt);
    const auto bundle = recording.finish();
    std::cout << bundle.string() << '\n';
}

} // namespace zento
