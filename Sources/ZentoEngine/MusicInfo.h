#pragma once

#include "ZentoEngine/BeatGrid.h"

#include <string>
#include <string_view>

namespace zento::EditPlanner {

/// The chosen music track.
struct MusicInfo {
    std::string file; // path of the audio file
    BeatGrid grid;
    double start = 0; // the user's trim, seconds into the file
    double end = 0;
    bool operator==(const MusicInfo&) const = default;
};

/// JSON form: the field names, all required. Throws `Error`.
MusicInfo decodeMusicInfo(std::string_view json);

} // namespace zento::EditPlanner
