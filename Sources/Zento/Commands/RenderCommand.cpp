#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/FilmMaking.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Commands/UserSettings.h"

#include <array>
#include <iostream>

namespace zento {

void render(std::span<const std::string_view> words)
{
    constexpr std::array<OptionSpec, 2> kOptions{{{"--settings", "FILE"}, {"--output", "FILE"}}};
    const Arguments arguments(words, kOptions);
    const std::string folder = arguments.only("bundle");
    const AppSettings settings = userSettings(arguments.value("--settings"));
    const Interruption interruption;
    const SessionBundle bundle = SessionBundle::load(folder);
    const auto film = arguments.value("--output");
    std::cout << makeFilm(bundle, settings, film.value_or(bundle.filmURL()), interruption.token())
                     .string()
              << '\n';
}

} // namespace zento
