#pragma once

#include "ZentoIntelligence/SpeechStretch.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zento {

/// Speech at `kSpeechRate` of which it is known what is said, and when.
struct SpokenMaterial {
    std::string name;
    std::vector<float> sound;
    std::vector<std::string> sentences;
    std::vector<SpeechStretch> spoken; // one a sentence
};

/// The recordings that come with the recogniser: read prose, one after the other.
SpokenMaterial readProse();

/// A synthetic voice that shows a program, with pauses of 1.5 s, over next to nothing or over a
/// fan and a keyboard.
enum class Room { Quiet, Noisy };
SpokenMaterial shownProgram(Room room);

/// The same over and over, for at least so long.
SpokenMaterial repeated(const SpokenMaterial& material, double seconds);

} // namespace zento
