#pragma once

#include <vector>

namespace zento {

/// What a synthesised track is made of.
struct TrackRecipe {
    double bpm = 120;
    std::vector<double> bass; // semitones from A1, one a beat, looped; not empty
    double hatEvery = 0.5;    // beats
};

/// Sound at 44,100 samples per second, in (-1, 1); both channels of one length.
struct SynthesizedTrack {
    std::vector<float> left;
    std::vector<float> right;
};

/// A kick on every beat, the first at 0, hats off the beat, and a bass line; faded in and out. The
/// same bits on every machine.
SynthesizedTrack synthesize(const TrackRecipe& recipe, double seconds);

} // namespace zento
