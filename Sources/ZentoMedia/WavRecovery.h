#pragma once

#include <filesystem>

namespace zento {

/// Has the header of a WAV file that was cut short while it was written tell all the whole samples
/// that are there; does nothing to one that does so already. False if it holds none. Throws
/// `Error`: the system's error, naming the file; code `kReadingFailed` for what no `WavWriter`
/// began.
bool finishWav(const std::filesystem::path& path);

} // namespace zento
