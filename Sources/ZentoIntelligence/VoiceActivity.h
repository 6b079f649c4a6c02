#pragma once

#include "ZentoIntelligence/SpeechStretch.h"

#include <array>
#include <cstddef>
#include <span>
#include <stop_token>
#include <vector>

namespace zento {

/// Hears whether someone speaks: the forward pass of Silero VAD v6 for 16 kHz, a short-time Fourier
/// transform, four convolutions and one long short-term memory cell, in plain floats.
///
/// Threading: one thread at a time; it remembers what came before.
class VoiceActivity {
public:
    static constexpr std::size_t kFrame = 512; // samples: 32 ms

    VoiceActivity();

    /// The probability that the next frame, of full scale ±1, holds speech.
    float probability(std::span<const float, kFrame> frame);

private:
    static constexpr std::size_t kContext = 64;
    static constexpr std::size_t kHidden = 128;

    std::vector<float> m_weights;
    std::array<float, kContext> m_context{};
    std::array<float, kHidden> m_output{};
    std::array<float, kHidden> m_cell{};
};

/// Where someone speaks in a sound of 16 kHz, in order and apart, with a fifth of a second around
/// it. Empty once `stop` is requested.
std::vector<SpeechStretch>
speechStretches(std::span<const float> sound, const std::stop_token& stop = {});

} // namespace zento
