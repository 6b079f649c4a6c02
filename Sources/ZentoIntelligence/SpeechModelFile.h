#pragma once

#include <filesystem>

namespace zento {

/// Where the model lies that speech is recognised with, if the user has one: a file, or a link to
/// one of the user's.
std::filesystem::path speechModelFile();

/// Whether the file is a whole speech model in the form of whisper.cpp: its header, and every table
/// in it up to the last byte. What the library itself would do with another file is not defined.
///
/// Throws `Error` kNoSpeechModel, a sentence that names the file.
void requireSpeechModel(const std::filesystem::path& file);

} // namespace zento
