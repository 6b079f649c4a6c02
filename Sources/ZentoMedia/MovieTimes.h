#pragma once

#include <filesystem>
#include <vector>

namespace zento {

/// When each picture of a movie is shown, in seconds from its first one on, ascending. Reads the
/// movie's index alone. Throws `Error` as `VideoDecoder` does when it opens a file.
std::vector<double> pictureTimes(const std::filesystem::path& path);

} // namespace zento
