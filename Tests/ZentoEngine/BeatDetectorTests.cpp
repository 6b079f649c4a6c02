#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoEngine/BeatDetector.h"
#include "ZentoEngine/OnsetEnvelope.h"
#include "ZentoEngine/Spectrum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <thread>
#include <vector>

namespace zento {
namespace {

/// A short tone at every beat, in silence.
std::vector<float> beatTrack(double bpm, double phase, double hertz, double rate, double seconds)
{
    std::vector<float> samples(static_cast<std::size_t>(seconds * rate), 0);
    const auto blip = test::sampled(
        [&](double t) { return std::sin(2 * std::numbers::pi * hertz * t) * std::exp(-30 * t); },
        rate,
        static_cast<std::size_t>(rate / 8));
    for (double t = phase; t < seconds; t += 60 / bpm) {
        const auto start = static_cast<std::size_t>(t * rate);
        for (std::size_t i = 0; i < blip.size() && start + i < samples.size(); ++i)
            samples[start + i] += blip[i];
    }
    return samples;
}

TEST(Beats, tempoAndPhaseOfABeatTrackAreFound)
{
    struct Case {
        const char* name;
        double hops; // of a beat
        double phase;
        double hertz;
        double rate;
    };
    const Case cases[] = {
        {"the likeliest tempo", 43, 0.1, 80, 44100},
        {"slow, later", 57, 0.5, 80, 44100},
        {"fast", 37, 0.2, 80, 44100},
        {"faster, from the start", 33, 0, 80, 44100},
        {"another rate", 47, 0.3, 80, 48000},
        {"a low rate", 26, 0.3, 80, 22050},
        {"without a low end", 43, 0.25, 4000, 44100},
        {"between two numbers of hops", 43.3, 0.1, 80, 44100},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const double hop = 512 / c.rate;
        const double period = c.hops * hop;
        const auto track = beatTrack(60 / period, c.phase, c.hertz, c.rate, 20);
        const BeatGrid grid = BeatDetector::analyze(track, c.rate);
        EXPECT_NEAR(grid.period, std::round(c.hops) * hop, 1e-9);
        EXPECT_NEAR(grid.bpm * grid.period, 60, 1e-9);
        EXPECT_NEAR(grid.duration, 20, 1e-9);
        EXPECT_GE(grid.phase, 0);
        EXPECT_LT(grid.phase, grid.period);
        if (std::round(c.hops) != c.hops)
            continue; // the grid drifts away from the beats and back
        // A frame that meets a beat may begin two hops before it.
        for (int beat = 0; beat < 30; ++beat) {
            const double time = c.phase + beat * period;
            EXPECT_NEAR(grid.nearestBeat(time), time, 2.5 * hop) << beat;
        }
    }
}

TEST(Beats, soundWithoutAnAnswerGetsTheDefaultGrid)
{
    struct Case {
        const char* name;
        std::size_t samples;
        double rate;
        bool isDefault;
    };
    const Case cases[] = {
        {"nothing", 0, 44100, true},
        {"too short for frames", 9727, 44100, true},
        {"frames, but no lag fits", 9728, 44100, true},
        {"the last length without a lag", 1024 + 512 * 27 + 511, 44100, true},
        {"the first lag fits", 1024 + 512 * 28, 44100, false},
        {"a rate no beat fits into", 100000, 500, true},
        {"no rate", 10000, 0, true},
        {"a rate that is no number", 10000, std::nan(""), true},
        {"an endless rate", 10000, HUGE_VAL, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const BeatGrid grid = BeatDetector::analyze(test::noise(2, c.samples), c.rate);
        const bool isDefault = grid.bpm == 120 && grid.period == 0.5 && grid.phase == 0;
        EXPECT_EQ(isDefault, c.isDefault);
        EXPECT_TRUE(std::isfinite(grid.duration));
    }
}

TEST(Beats, silenceHasNoOnsetsAndTheShortestPeriod)
{
    const std::vector<float> silence(441000, 0);
    const auto onsets = BeatDetector::findOnsets(silence, 44100);
    EXPECT_EQ(onsets.envelope, std::vector<float>(onsets.envelope.size(), 0));
    EXPECT_EQ(onsets.envelope.size(), 859U); // (441000 - 1024) / 512
    const BeatGrid grid = BeatDetector::analyze(silence, 44100);
    EXPECT_NEAR(grid.period, 27 * 512 / 44100.0, 1e-12);
    EXPECT_EQ(grid.phase, 0);
}

TEST(Beats, loudnessDoesNotMatter)
{
    auto track = beatTrack(128, 0.2, 80, 44100, 15);
    const BeatGrid loud = BeatDetector::analyze(track, 44100);
    for (float& sample : track)
        sample /= 32;
    EXPECT_EQ(BeatDetector::analyze(track, 44100), loud);
}

TEST(Beats, aFileIsHeardAsTheMeanOfItsChannelsAtItsOwnRate)
{
    const test::TemporaryFolder folder;
    const auto track = beatTrack(100, 0.4, 80, 48000, 10);
    test::writeWav(folder / "a.wav", 48000, {track, std::vector<float>(track.size(), 0)});
    const auto mono = BeatDetector::loadMono(folder / "a.wav");
    EXPECT_EQ(mono.sampleRate, 48000);
    ASSERT_EQ(mono.samples.size(), track.size());
    for (std::size_t i = 0; i < track.size(); i += 1000)
        EXPECT_EQ(mono.samples[i], track[i] / 2);
    EXPECT_EQ(BeatDetector::analyze(folder / "a.wav"), BeatDetector::analyze(mono.samples, 48000));
    EXPECT_THROW(BeatDetector::analyze(folder / "gone.wav"), Error);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(BeatDetector::analyze(folder / "a.wav", stop.get_token()), Error);
}

TEST(Beats, gridsAreTheSameOnManyThreadsAtOnce)
{
    const auto track = beatTrack(110, 0.3, 80, 44100, 5);
    const BeatGrid alone = BeatDetector::analyze(track, 44100);
    std::vector<BeatGrid> grids(6);
    {
        std::vector<std::jthread> threads;
        threads.reserve(grids.size());
        for (BeatGrid& grid : grids)
            threads.emplace_back([&] { grid = BeatDetector::analyze(track, 44100); });
    }
    EXPECT_THAT(grids, testing::Each(alone));
}

TEST(Beats, spectrumIsTwiceTheTransformOfTheWindowedSound)
{
    const auto sound = test::noise(7, Spectrum::kSamples);
    std::array<float, Spectrum::kBins> magnitudes{};
    Spectrum().magnitudes(std::span<const float, Spectrum::kSamples>(sound), magnitudes);
    constexpr double kTurn = 2 * std::numbers::pi / Spectrum::kSamples;
    for (const std::size_t k : {1U, 2U, 17U, 255U, 511U}) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < sound.size(); ++i) {
            const double window =
                std::sqrt(2.0 / 3) * (1 - std::cos(kTurn * static_cast<double>(i)));
            sum += static_cast<double>(sound[i]) * window
                   * std::polar(1.0, -kTurn * static_cast<double>(k * i % Spectrum::kSamples));
        }
        EXPECT_NEAR(static_cast<double>(magnitudes[k]), 2 * std::abs(sum), 1e-3) << k;
    }
}

TEST(Beats, ofAGrid)
{
    const BeatGrid grid{.bpm = 120, .period = 0.5, .phase = 0.25, .duration = 1.75};
    EXPECT_THAT(grid.beats(), testing::ElementsAre(0.25, 0.75, 1.25)) << "the end is not in it";
    EXPECT_EQ(grid.nearestBeat(0.9), 0.75);
    EXPECT_EQ(grid.nearestBeat(1.0), 1.25) << "half-way goes away from the phase";
    EXPECT_EQ(grid.nearestBeat(0.0), -0.25);
    EXPECT_EQ(grid.nearestBeat(9.1), 9.25);
    EXPECT_TRUE((BeatGrid{.period = 0.5, .phase = 3, .duration = 2}.beats().empty()));
    EXPECT_TRUE((BeatGrid{.period = 0, .duration = 2}.beats().empty()));
    EXPECT_EQ(BeatGrid{}.nearestBeat(3.3), 3.3);
}

} // namespace
} // namespace zento
