#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/FilmMaking.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Recording.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Demo/DemoActor.h"
#include "Zento/Demo/DemoStage.h"
#include "Zento/Demo/DemoTracks.h"
#include "ZentoCore/Error.h"

#include <array>
#include <iostream>

namespace zento {

namespace {

/// Performs the script on its stage while the ordinary recorder looks on.
std::filesystem::path recordDemo(const std::filesystem::path& folder, Interruption& interruption)
{
    std::cerr << "Setting the stage: a display of its own with two programs.\n";
    const DemoStage stage(interruption.token());
    stage.adoptEnvironment();
    const auto script = demoScript();
    DemoActor actor(stage.display(), stage.accessibilityAddress());
    awaitCurtain(script, actor, interruption.token());
    const auto desktop = openDesktop(stage.display());
    std::cerr << "Recording less than half a minute of work.\n";
    Recording recording(
        folder / bundleName(std::chrono::system_clock::now()),
        *desktop,
        Target::Display{},
        Recording::Sources{},
        interruption);
    perform(script, actor, interruption.token());
    if (interruption.token().stop_requested()) {
        throw Error(ErrorCode::kDemoStopped, "the demo was stopped before its end");
    }
    const std::filesystem::path bundle = recording.finish();
    addDemoTracks(bundle, actor.spoken(), recording.epoch(), interruption.token());
    return bundle;
}

/// Everything a film can have.
AppSettings demoSettings()
{
    AppSettings settings;
    settings.showKeystrokes = true;
    settings.motionBlur = true;
    settings.webcamBlurBackground = true;
    settings.webcamEnhance = true;
    settings.titleCard = true;
    settings.titleCardText = "A picture for the storm warning";
    settings.endCard = true;
    settings.endCardLine = "Recorded and edited by Zento";
    return settings;
}

} // namespace

void demo(std::span<const std::string_view> words)
{
    constexpr std::array<OptionSpec, 1> kOptions{{{"--output", "FOLDER"}}};
    const Arguments arguments(words, kOptions);
    arguments.expectNone();
    const auto output = arguments.value("--output");
    const std::filesystem::path folder = output ? std::filesystem::path(*output) : sessionsFolder();
    Interruption interruption;
    const SessionBundle bundle = SessionBundle::load(recordDemo(folder, interruption));
    std::cout << bundle.url.string() << '\n';
    std::cout << makeFilm(bundle, demoSettings(), bundle.filmURL(), interruption.token()).string()
              << '\n';
}

} // namespace zento
