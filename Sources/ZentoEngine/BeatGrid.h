#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// The steady pulse of a music file.
struct BeatGrid {
    double bpm = 0;      // beats per minute
    double period = 0;   // seconds per beat
    double phase = 0;    // seconds from the file's start to the first beat, [0, period)
    double duration = 0; // seconds of audio analysed

    /// The times of all beats, by repeated addition. Empty without a period, or if the first beat
    /// comes after the end.
    std::vector<double> beats() const;

    /// The beat nearest to a time, also before the first and after the last; half-way between two
    /// it is the one farther from `phase`. The time itself without a period.
    double nearestBeat(double time) const;

    bool operator==(const BeatGrid&) const = default;
};

/// JSON form: the field names in the order of the record, all required. `decodeBeatGrid` throws
/// `Error`.
std::string encodeBeatGrid(const BeatGrid& grid);
BeatGrid decodeBeatGrid(std::string_view json);

} // namespace zento
