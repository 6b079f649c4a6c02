#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>

/// Turns a finished film into an animated GIF that looks like it.
namespace zento::GIFExporter {

using ProgressCallback = std::function<void(double fraction)>; // [0, 1]

/// Writes the film `video` to the GIF file `to`, replacing it.
///
/// The GIF shows, for each tick of a grid of `fps` a second, the first frame at or after it; every
/// tick lasts equally long, so a film with fewer frames than ticks plays faster. Times in a GIF are
/// hundredths of a second: the rounding is spread, and the whole is as long as its ticks. Frames
/// wider than `maxWidth` pixels are made smaller, never larger.
///
/// The file is made under a temporary name beside the target, which is left untouched by a failure
/// or a cancellation.
///
/// `fps`: (0, 100]; `maxWidth`: [1, ∞). `onProgress` may be empty; it is called on this thread and
/// must be quick.
///
/// Threading: one call may run beside others with other targets.
/// Errors: `Error` with the codes `kGif...`, the system's for a film that cannot be opened, and
/// `kCancelled` soon after `stop` is requested.
void exportGif(
    const std::filesystem::path& video,
    const std::filesystem::path& to,
    double fps,
    double maxWidth,
    const ProgressCallback& onProgress = {},
    const std::stop_token& stop = {});

} // namespace zento::GIFExporter
