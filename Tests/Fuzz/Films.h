#pragma once

#include <filesystem>
#include <string_view>

namespace zento {

/// Exports short films, each with one file that comes from outside: the recording, the webcam's
/// movie, the music, a background image or the plan.
///
/// Threading: one thread.
class FilmExports {
public:
    /// `folder`: private and writable.
    explicit FilmExports(std::filesystem::path folder);

    /// The first byte of `input` tells which file the rest is. Aborts the process where a refused
    /// export leaves a file under the film's name.
    void exportAnything(std::string_view input);

private:
    std::filesystem::path m_folder;
};

} // namespace zento
