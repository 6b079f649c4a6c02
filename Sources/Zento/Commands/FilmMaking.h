#pragma once

#include "Zento/Model/AppSettings.h"
#include "ZentoCore/SessionBundle.h"

#include <filesystem>
#include <stop_token>
#include <string>

namespace zento {

/// `renderFilm` with a bar on the terminal and its complaints on standard error. Returns the film's
/// path.
std::filesystem::path makeFilm(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const std::filesystem::path& film,
    const std::stop_token& stop);

/// `renderGif` with a bar on the terminal.
void makeGif(
    const std::filesystem::path& film,
    const std::filesystem::path& gif,
    const std::stop_token& stop);

/// Says on standard error that a film goes without its music, and why.
void tellMusicLeftOut(const std::string& reason);

} // namespace zento
