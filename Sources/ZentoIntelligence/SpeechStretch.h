#pragma once

#include <vector>

namespace zento {

inline constexpr int kSpeechRate = 16000; // samples per second: what engines and networks hear

/// A part of a sound, in its seconds.
struct SpeechStretch {
    double start = 0;
    double end = 0;
    bool operator==(const SpeechStretch&) const = default;
};

} // namespace zento
