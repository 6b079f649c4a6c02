#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/FilmMaking.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Commands/UserSettings.h"

#include <array>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

namespace zento {

namespace {

struct Targets {
    std::filesystem::path film;
    std::optional<std::filesystem::path> gif;
};

/// A GIF is made from the film, which is then at its usual place.
Targets targetsOf(const Arguments& arguments, const SessionBundle& bundle)
{
    const std::filesystem::path film = bundle.filmURL();
    const auto output = arguments.value("--output");
    const bool namesGif = output && std::filesystem::path(*output).extension() == ".gif";
    if (arguments.has("--gif") && output && !namesGif) {
        throw UsageError("--gif needs an --output that ends in .gif, not \"" + *output + "\"");
    }
    if (namesGif) {
        return {.film = film, .gif = *output};
    }
    if (arguments.has("--gif")) {
        return {.film = film, .gif = std::filesystem::path(film).replace_extension("gif")};
    }
    return {.film = output ? std::filesystem::path(*output) : film, .gif = {}};
}

} // namespace

void render(std::span<const std::string_view> words)
{
    constexpr std::array<OptionSpec, 3> kOptions{
        {{"--settings", "FILE"}, {"--output", "FILE"}, {"--gif", ""}}};
    const Arguments arguments(words, kOptions);
    const std::string folder = arguments.only("bundle");
    const AppSettings settings = userSettings(arguments.value("--settings"));
    const Interruption interruption;
    const SessionBundle bundle = SessionBundle::load(folder);
    const Targets targets = targetsOf(arguments, bundle);
    makeFilm(bundle, settings, targets.film, interruption.token());
    std::cout << targets.film.string() << '\n';
    if (targets.gif) {
        makeGif(targets.film, *targets.gif, interruption.token());
        std::cout << targets.gif->string() << '\n';
    }
}

} // namespace zento
