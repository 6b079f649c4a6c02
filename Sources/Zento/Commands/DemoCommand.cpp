#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/FilmMaking.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/RecordDemo.h"
#include "Zento/Commands/Subcommands.h"

#include <array>
#include <chrono>
#include <iostream>

namespace zento {

namespace {

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
    const auto path = folder / bundleName(std::chrono::system_clock::now());
    recordDemo(path, interruption);
    const SessionBundle bundle = SessionBundle::load(path);
    std::cout << bundle.url.string() << '\n';
    std::cout << makeFilm(bundle, demoSettings(), bundle.filmURL(), interruption.token()).string()
              << '\n';
}

} // namespace zento
