#pragma once

#include "ZentoCore/Overrides.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoEngine/MusicInfo.h"

#include <optional>
#include <stop_token>

namespace zento {

/// `analyzedMusic` for a command: music that cannot be read is told in a sentence on standard error
/// and left out. Throws `Error` with the code `kCancelled` only.
std::optional<EditPlanner::MusicInfo> bundleMusic(
    const SessionBundle& bundle, const SavedOverrides& edits, const std::stop_token& stop = {});

} // namespace zento
