#pragma once

#include <filesystem>

namespace zento {

class Interruption;

/// Performs the demo's script on a desktop of its own while the ordinary recorder looks on, and
/// adds the voice, the webcam and the music. Makes `bundle`.
///
/// Takes about half a minute. The process's environment is the demo desktop's afterwards.
/// Throws `Error`, kDemoStopped when interrupted.
void recordDemo(const std::filesystem::path& bundle, Interruption& interruption);

} // namespace zento
