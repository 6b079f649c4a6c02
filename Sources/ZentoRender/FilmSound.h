#pragma once

#include "ZentoCore/EditPlan.h"

#include <filesystem>
#include <functional>
#include <stop_token>

namespace zento {

/// Where a film with sound is made.
struct FilmPaths {
    std::filesystem::path pictures;   // alone, for as long as it takes
    std::filesystem::path soundtrack; // the same
    std::filesystem::path film;       // of both; nothing is joined before both are complete

    /// Beside the target: "film.video.mp4" and "film.soundtrack.m4a" for "film.mp4".
    static FilmPaths beside(const std::filesystem::path& target, std::filesystem::path film);
};

/// Writes the pictures to a file, or throws soon after the token says stop.
using WritePictures =
    std::function<void(const std::filesystem::path& file, const std::stop_token& stop)>;

/// Writes a film of `duration` seconds whose plan has sound. The sound is made on a thread of its
/// own while `writePictures` runs on this one; then both are joined. What fails first ends the
/// other and is thrown, so that a film with a missing song does not take its whole time to fail.
/// The two files it makes on the way are gone afterwards.
///
/// Throws `Error`, with the code `kCancelled` soon after `stop` is requested.
void writeFilmWithSound(
    const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    const FilmPaths& paths,
    const WritePictures& writePictures,
    const std::stop_token& stop);

} // namespace zento
