#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace zento {

/// The magnitudes of a real transform of 1024 samples under a Hann window of mean square 1.
///
/// Threading: used by one thread at a time; any number may be made and used side by side.
class Spectrum {
public:
    static constexpr std::size_t kSamples = 1024;
    static constexpr std::size_t kBins = kSamples / 2; // the one of half the rate is left out

    Spectrum();
    ~Spectrum();
    Spectrum(const Spectrum&) = delete;
    Spectrum& operator=(const Spectrum&) = delete;

    /// Twice the mathematical transform: what thresholds for the flux are stated for.
    void magnitudes(std::span<const float, kSamples> samples, std::span<float, kBins> result);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
