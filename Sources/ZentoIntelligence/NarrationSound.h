#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

namespace zento {

/// A narration as engines and networks hear it: at `kSpeechRate`, all channels together, whichever
/// of an interface's inputs the microphone is in; a quiet one as loud as speech is.
///
/// Full scale is ±1. Empty once `stop` is requested. Threading: any thread; blocks on a file, and
/// takes 230 MB for an hour. Throws `Error` as `AudioReader`.
std::vector<float> narrationSound(const std::filesystem::path& audio, const std::stop_token& stop);

} // namespace zento
