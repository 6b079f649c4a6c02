#include "ZentoEngine/OnsetEnvelope.h"

#include "ZentoEngine/Spectrum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace zento::BeatDetector {

namespace {

constexpr std::size_t kFewestHops = 19; // of 512 samples; below, there is no pulse to be found
constexpr double kLowestHertz = 260;

struct Flux {
    std::vector<float> all;
    std::vector<float> low;
};

/// The highest bin that counts as low.
std::size_t lowLimit(double sampleRate)
{
    const double bin = std::trunc(kLowestHertz / (sampleRate / Spectrum::kSamples));
    return static_cast<std::size_t>(std::clamp(bin, 3.0, static_cast<double>(Spectrum::kBins - 1)));
}

/// By how much the spectrum grows from one frame to the next.
Flux spectralFlux(std::span<const float> samples, double sampleRate)
{
    const std::size_t hops = hopCount(samples.size());
    const std::size_t low = lowLimit(sampleRate);
    Flux flux{std::vector<float>(hops, 0), std::vector<float>(hops, 0)};
    Spectrum spectrum;
    std::array<float, Spectrum::kBins> first{};
    std::array<float, Spectrum::kBins> second{};
    auto* magnitudes = &first;
    auto* previous = &second;
    for (std::size_t i = 0; i < hops; ++i) {
        spectrum.magnitudes(
            samples.subspan(kHopSamples * i).first<Spectrum::kSamples>(), *magnitudes);
        for (std::size_t k = 1; k < Spectrum::kBins; ++k) {
            const float growth = (*magnitudes)[k] - (*previous)[k];
            if (growth > 0) {
                flux.all[i] += growth;
                if (k <= low)
                    flux.low[i] += growth;
            }
        }
        std::swap(magnitudes, previous);
    }
    return flux;
}

/// To mean 0 and deviation 1. What does not deviate at all becomes all zeros.
void standardize(std::vector<float>& values)
{
    const auto count = static_cast<double>(values.size());
    double sum = 0;
    for (const float value : values)
        sum += static_cast<double>(value);
    const double mean = sum / count;
    double squares = 0;
    for (const float value : values)
        squares += (static_cast<double>(value) - mean) * (static_cast<double>(value) - mean);
    const double deviation = std::sqrt(squares / count);
    for (float& value : values)
        value =
            deviation > 0 ? static_cast<float>((static_cast<double>(value) - mean) / deviation) : 0;
}

/// By how much every value stands out from the mean of the `span` values up to it, itself included.
std::vector<float> prominence(const std::vector<float>& values, std::size_t span)
{
    std::vector<float> result(values.size(), 0);
    float sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        sum += values[i];
        if (i >= span)
            sum -= values[i - span];
        const auto count = static_cast<float>(std::min(i + 1, span));
        result[i] = std::max(values[i] - sum / count, 0.0F);
    }
    return result;
}

} // namespace

std::size_t hopCount(std::size_t sampleCount)
{
    if (sampleCount / kHopSamples < kFewestHops)
        return 0;
    return (sampleCount - Spectrum::kSamples) / kHopSamples;
}

Onsets findOnsets(std::span<const float> samples, double sampleRate)
{
    if (hopCount(samples.size()) == 0)
        return {};
    Flux flux = spectralFlux(samples, sampleRate);
    standardize(flux.all);
    const double halfSecond = std::trunc(sampleRate / kHopSamples * 0.5);
    const auto span = static_cast<std::size_t>(
        std::clamp(halfSecond, 3.0, static_cast<double>(flux.all.size()) + 3));
    return {prominence(flux.all, span), std::move(flux.low)};
}

} // namespace zento::BeatDetector
