#pragma once

#include <filesystem>
#include <string>

/// The music of a recording: a file in its bundle, and the text that has to go with it.
///
/// Threading: any thread, one at a time for a bundle. Errors: `Error`.
namespace zento::BundleMusic {

/// Makes a file the recording's music, whatever format it has. `credit` is kept beside it; empty
/// for none, and that of the music before goes. A file that holds no sound is refused before
/// anything changes, and what fails on the way leaves the music as it was.
void put(
    const std::filesystem::path& bundle,
    const std::filesystem::path& source,
    const std::string& credit = {});

/// No music is no error.
void remove(const std::filesystem::path& bundle);

struct Description {
    bool exists = false;
    double duration = 0; // seconds; 0 where the file does not tell
    std::string credit;
    bool operator==(const Description&) const = default;
};

/// What cannot be read counts as not there.
Description describe(const std::filesystem::path& bundle);

} // namespace zento::BundleMusic
