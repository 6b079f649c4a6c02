#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>

namespace zento {

/// How much of a long job is done, [0, 1]. Called on the job's own thread; must be quick.
using ShareCallback = std::function<void(double share)>;

/// Writes a movie of the first video track of one file and the first audio track of another, none
/// of it encoded again: MP4 with its index in front. All of the pictures are kept; the sound stops
/// with the last of them, so that it never makes the film longer. What hides the lead-in of either
/// encoder is kept, and with it the two stay together.
///
/// Throws `Error`: code `kTrackMissing` if either file has no such track; code `kJoinFailed` for
/// tracks an MP4 file cannot hold; code `kCancelled` soon after `stop` is requested; the system's
/// error, naming the file, where one cannot be read or written. What is then at `to` is no movie.
void joinTracks(
    const std::filesystem::path& video,
    const std::filesystem::path& audio,
    const std::filesystem::path& to,
    const std::stop_token& stop = {},
    const ShareCallback& onProgress = {});

} // namespace zento
