#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/FilmMaking.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Commands/UserSettings.h"
#include "Zento/Desktop/DesktopImage.h"
#include "Zento/Model/FilmMaking.h"
#include "Zento/Model/PlanSources.h"
#include "ZentoCore/FileIO.h"

#include <array>
#include <iostream>

namespace zento {

namespace {

constexpr std::array<OptionSpec, 7> kOptions{{
    {"--settings", "FILE"},
    {"--config", "FILE"},
    {"--overrides", "FILE"},
    {"--music", "FILE"},
    {"--size", "WxH"},
    {"--fps", "N"},
    {"--output", "FILE"},
}};

/// What the options put in the place of the bundle's and the settings' own inputs.
void apply(const Arguments& arguments, EditPlanner::PlanInput& input)
{
    if (const auto file = arguments.value("--config")) {
        input.config = parseFile(*file, decodePlanConfig);
    }
    if (const auto file = arguments.value("--overrides")) {
        input.overrides = parseFile(*file, decodeOverrides);
    }
    if (const auto file = arguments.value("--music")) {
        input.music = parseFile(*file, EditPlanner::decodeMusicInfo);
    }
    if (const auto size = arguments.read("--size", readSize)) {
        input.output.width = size->width;
        input.output.height = size->height;
    }
    if (const auto fps = arguments.read("--fps", readPositive)) {
        input.output.fps = *fps;
    }
}

} // namespace

void plan(std::span<const std::string_view> words)
{
    const Arguments arguments(words, kOptions);
    const SessionBundle bundle = SessionBundle::load(arguments.only("bundle"));
    const AppSettings settings = userSettings(arguments.value("--settings"));
    const bool hasOwnEdits = arguments.value("--overrides").has_value();
    const SavedOverrides edits = hasOwnEdits ? SavedOverrides{} : loadSavedOverrides(bundle);
    EditPlanner::PlanInput input = gatherPlanInput(bundle, settings, edits, desktopImage());
    if (!arguments.value("--music")) {
        input.music = readableMusic(bundle, edits, tellMusicLeftOut);
    }
    apply(arguments, input);
    const std::string text = encodePlan(planAtLevels(input, settings)) + "\n";
    if (const auto file = arguments.value("--output")) {
        writeFile(*file, text);
    } else {
        std::cout << text;
    }
}

} // namespace zento
