#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

/// Spoken sound, one channel.
struct Speech {
    int sampleRate = 0; // samples per second
    std::vector<float> samples;
};

/// The sentence as the speech synthesiser says it. Nothing where that is not installed or fails.
/// Throws `Error` kDemoStopped on a stop request.
std::optional<Speech> speak(const std::string& sentence, const std::stop_token& stop);

} // namespace zento
