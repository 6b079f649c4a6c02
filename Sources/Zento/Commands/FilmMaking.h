#pragma once

#include "Zento/Model/AppSettings.h"
#include "ZentoCore/SessionBundle.h"

#include <filesystem>
#include <stop_token>

namespace zento {

/// Plans a recording, keeps the plan as "editplan.json" in its bundle and renders the film, with a
/// bar on the terminal. Returns the film's path. Throws `Error`.
std::filesystem::path makeFilm(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const std::filesystem::path& film,
    const std::stop_token& stop);

/// Turns a film into a GIF of the size and rate Zento makes them in, with a bar on the terminal.
/// Throws `Error`.
void makeGif(
    const std::filesystem::path& film,
    const std::filesystem::path& gif,
    const std::stop_token& stop);

} // namespace zento
