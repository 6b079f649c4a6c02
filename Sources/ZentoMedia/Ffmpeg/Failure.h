#pragma once

#include "ZentoCore/Error.h"

#include <filesystem>
#include <string>

namespace zento::ffmpeg {

/// The `Error` for a negative result of the library: "{action} {path}: {the library's text}".
/// A system's error behind it keeps its domain and number; all else gets `code`.
Error failure(const std::string& action, const std::filesystem::path& path, int result, int code);

/// Stops the library from writing to standard error: what goes wrong is told by `Error` alone.
/// Process-wide; every entry to the module calls it, the first call counts.
void silenceLog();

/// The path as an address no part of which is taken for a protocol.
std::string fileUrl(const std::filesystem::path& path);

} // namespace zento::ffmpeg
