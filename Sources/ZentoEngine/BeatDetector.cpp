#include "ZentoEngine/BeatDetector.h"

#include "ZentoCore/Error.h"
#include "ZentoEngine/OnsetEnvelope.h"
#include "ZentoMedia/AudioReader.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

namespace zento::BeatDetector {

namespace {

constexpr double kFastest = 185; // beats per minute
constexpr double kLikeliest = 118;
constexpr int kPhases = 96;
constexpr float kSilentLowEnd = 0.001F;

BeatGrid defaultGrid(double duration)
{
    return {.bpm = 120, .period = 0.5, .phase = 0, .duration = duration};
}

/// The correlation of the envelope with itself `lag` hops later.
float correlation(std::span<const float> envelope, std::size_t lag)
{
    const auto later = envelope.subspan(lag);
    double sum = 0;
    for (std::size_t i = 0; i < later.size(); ++i)
        sum += static_cast<double>(envelope[i]) * static_cast<double>(later[i]);
    return static_cast<float>(sum);
}

/// How likely a tempo is before anything was heard: log-normal, a deviation of 0.55 octave.
float prior(double bpm)
{
    const double octaves = std::log2(bpm / kLikeliest);
    return static_cast<float>(std::exp(octaves * octaves / -0.605));
}

/// The beat's period in hops; 0 if there is none. `rate`: hops per second.
std::size_t bestLag(std::span<const float> envelope, double rate)
{
    const std::size_t last = envelope.size() - 1;
    const double fewest = std::trunc(rate * 60 / kFastest);
    const double most = std::min(static_cast<double>(last), std::trunc(rate));
    if (!(fewest <= most))
        return 0; // a short clip: no beat of it comes twice
    float bestScore = -1;
    std::size_t best = 0;
    const auto end = static_cast<std::size_t>(most) + 1;
    for (auto lag = static_cast<std::size_t>(fewest); lag < end; ++lag) {
        const float once = correlation(envelope, lag);
        const float twice = 2 * lag < last ? correlation(envelope, 2 * lag) * 0.5F : 0;
        const float score = (once + twice) * prior(rate * 60 / static_cast<double>(lag));
        if (score > bestScore) {
            bestScore = score;
            best = lag;
        }
    }
    return best;
}

/// What the beats from `phase` on meet in `source`, a hop to either side included.
float phaseScore(std::span<const float> source, const BeatGrid& grid, double phase, double rate)
{
    float score = 0;
    const std::size_t last = source.size() - 1;
    for (double t = phase; t < grid.duration; t += grid.period) {
        const double hop = std::trunc(rate * t);
        if (hop > static_cast<double>(last))
            break;
        const auto index = static_cast<std::size_t>(hop);
        const std::size_t to = std::min(index + 1, last);
        for (std::size_t i = index == 0 ? 0 : index - 1; i <= to; ++i)
            score += source[i];
    }
    return score;
}

double bestPhase(std::span<const float> source, const BeatGrid& grid, double rate)
{
    float bestScore = -1;
    double best = 0;
    for (int c = 0; c < kPhases; ++c) {
        const double phase = grid.period * c / kPhases;
        const float score = phaseScore(source, grid, phase, rate);
        if (score > bestScore) {
            bestScore = score;
            best = phase;
        }
    }
    return best;
}

void append(AudioBlock block, std::vector<float>& samples)
{
    const std::size_t begin = samples.size();
    const float share = 1 / static_cast<float>(block.size());
    samples.resize(begin + block.front().size(), 0);
    for (const std::span<const float> channel : block)
        for (std::size_t i = 0; i < channel.size(); ++i)
            samples[begin + i] += channel[i] * share;
}

} // namespace

MonoSound loadMono(const std::filesystem::path& file, const std::stop_token& stop)
{
    AudioReader reader(file);
    MonoSound sound{{}, static_cast<double>(reader.sampleRate())};
    try {
        sound.samples.reserve(reader.expectedLength());
        while (const auto block = reader.next()) {
            if (stop.stop_requested())
                throw Error(
                    ErrorCode::kCancelled, "Listening to " + file.string() + " was cancelled");
            append(*block, sound.samples);
            if (sound.samples.size() > std::numeric_limits<std::uint32_t>::max())
                throw Error(ErrorCode::kNoMonoBuffer, file.string() + " is too long to listen to");
        }
    } catch (const std::bad_alloc&) {
        throw Error(
            ErrorCode::kNoMonoBuffer, "There is not enough memory to listen to " + file.string());
    }
    return sound;
}

BeatGrid analyze(std::span<const float> samples, double sampleRate)
{
    if (!(sampleRate > 0) || std::isinf(sampleRate))
        return defaultGrid(0);
    BeatGrid grid = defaultGrid(static_cast<double>(samples.size()) / sampleRate);
    const Onsets onsets = findOnsets(samples, sampleRate);
    if (onsets.envelope.empty())
        return grid;
    const double rate = sampleRate / kHopSamples;
    const std::size_t lag = bestLag(onsets.envelope, rate);
    if (lag < 1)
        return grid;
    grid.period = static_cast<double>(lag) / rate;
    grid.bpm = 60 / grid.period;
    const float low = std::accumulate(onsets.lowFlux.begin(), onsets.lowFlux.end(), 0.0F);
    grid.phase = bestPhase(low > kSilentLowEnd ? onsets.lowFlux : onsets.envelope, grid, rate);
    return grid;
}

BeatGrid analyze(const std::filesystem::path& file, const std::stop_token& stop)
{
    const MonoSound sound = loadMono(file, stop);
    return analyze(sound.samples, sound.sampleRate);
}

} // namespace zento::BeatDetector
