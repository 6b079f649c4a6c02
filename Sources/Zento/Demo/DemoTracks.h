#pragma once

#include "Zento/Demo/DemoActor.h"

#include <filesystem>
#include <span>
#include <stop_token>

namespace zento {

/// Adds to the demo's recording what no device recorded: a voice that says the lines with its
/// transcript, a camera's view of who speaks, and a tune to go under the film. Without a speech
/// synthesiser the lines are read only.
///
/// `bundle`: a complete recording. `lines`: ascending, their times on the monotonic clock; `epoch`:
/// the recording's on the same clock.
/// Throws `Error`, kDemoStopped on a stop request.
void addDemoTracks(
    const std::filesystem::path& bundle,
    std::span<const SpokenLine> lines,
    double epoch,
    const std::stop_token& stop);

} // namespace zento
