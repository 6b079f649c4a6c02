#pragma once

#include <string>
#include <string_view>

namespace zento {

/// The steady pulse of a music file.
struct BeatGrid {
    double bpm = 0;      // beats per minute
    double period = 0;   // seconds per beat
    double phase = 0;    // seconds from the file's start to the first beat, [0, period)
    double duration = 0; // seconds of audio analysed
    bool operator==(const BeatGrid&) const = default;
};

/// JSON form: the field names in the order of the record, all required. `decodeBeatGrid` throws
/// `Error`.
std::string encodeBeatGrid(const BeatGrid& grid);
BeatGrid decodeBeatGrid(std::string_view json);

} // namespace zento
