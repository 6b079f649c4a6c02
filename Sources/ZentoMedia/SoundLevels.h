#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

namespace zento {

/// The peaks of a sound file in `bins` equal parts of its first `duration` seconds, each over all
/// channels, [0, 1]; zeros where the file has ended. Empty without a duration or bins.
///
/// Threading: any; reads the whole file. Throws `Error` as `AudioReader`, and with the code
/// `kCancelled` soon after `stop` is requested.
std::vector<float> soundLevels(
    const std::filesystem::path& file, double duration, int bins, const std::stop_token& stop = {});

} // namespace zento
