#pragma once

#include <string>
#include <vector>

namespace zento {

/// The encoders that recordings, films and previews are written with and that this system's FFmpeg
/// lacks, by the names FFmpeg gives them.
std::vector<std::string> missingEncoders();

} // namespace zento
