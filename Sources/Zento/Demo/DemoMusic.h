#pragma once

#include <vector>

namespace zento {

/// Sound at 44,100 samples per second, in [-1, 1]; both channels of the same length.
struct StereoSound {
    std::vector<float> left;
    std::vector<float> right;
};

/// The demo's own tune: a quiet loop of four bars at 112 beats per minute, drums, bass, chords and
/// plucked notes, beginning on a beat. The loop is the same at its end as at its start, so it goes
/// on for as long as is asked for. Peaks stay below 0.7.
StereoSound demoMusic(double seconds);

} // namespace zento
