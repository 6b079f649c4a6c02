#pragma once

#include <filesystem>
#include <vector>

namespace zento {

/// When the middle of a movie's picture becomes bright, in seconds of the movie.
std::vector<double> flashes(const std::filesystem::path& movie);

/// When beeps begin that are whole, in seconds of the file.
std::vector<double> beeps(const std::filesystem::path& sound);

} // namespace zento
