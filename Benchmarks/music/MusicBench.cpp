// How well a film sits on its music: what the beat detector makes of tempos that are known, how far
// cuts lie from beats on the tracks made here, and how much quieter the music is under speech.
//
//     music_bench            measures
//     music_bench FOLDER     puts the tracks into a folder, for tools/spectrograms.sh

#include "HumanSession.h"
#include "TestSupport/Random.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Music/MusicLibrary.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoEngine/BeatDetector.h"
#include "ZentoEngine/EditPlanner.h"
#include "ZentoRender/AudioMixer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <vector>

namespace zento::bench {
namespace {

constexpr double kRate = 44100;
constexpr double kHops = kRate / 512; // the detector's steps a second

double percentile(std::vector<double> values, double share)
{
    if (values.empty())
        return 0;
    std::ranges::sort(values);
    const auto last = static_cast<double>(values.size() - 1);
    return values[static_cast<std::size_t>(share * last + 0.5)];
}

void tell(const char* what, const std::vector<double>& values, const char* unit)
{
    std::printf(
        "  %-44s %5zu  median %8.2f  p95 %8.2f  most %8.2f %s\n",
        what,
        values.size(),
        percentile(values, 0.5),
        percentile(values, 0.95),
        percentile(values, 1),
        unit);
}

/// A low, short beat; `first` is when the first one begins.
std::vector<float> clickTrack(double bpm, double first, double seconds)
{
    const double period = 60 / bpm;
    const auto sound = [&](double t) {
        const double since = t < first ? -1 : std::fmod(t - first, period);
        return since < 0 ? 0 : 0.8 * std::sin(since * 2 * M_PI * 90) * std::exp(-since * 40);
    };
    return test::sampled(sound, kRate, static_cast<std::size_t>(seconds * kRate));
}

/// How far the nearest beat of the grid lies, in milliseconds.
double offBeat(const BeatGrid& grid, double time)
{
    return std::abs(grid.nearestBeat(time) - time) * 1000;
}

void measureDetector(double seconds)
{
    std::vector<double> lags;
    std::vector<double> first;
    std::vector<double> last;
    int otherOctave = 0;
    for (int bpm = 60; bpm <= 185; ++bpm) {
        for (const double start : {0.1, 0.23}) {
            const BeatGrid grid = BeatDetector::analyze(clickTrack(bpm, start, seconds), kRate);
            const double lag = grid.period * kHops;
            const double wanted = kHops * 60 / bpm;
            if (std::abs(std::log2(lag / wanted)) > 0.3) {
                ++otherOctave;
                continue;
            }
            lags.push_back(std::abs(lag - wanted));
            first.push_back(offBeat(grid, start));
            const double beats = std::floor((seconds - 1 - start) * bpm / 60);
            last.push_back(offBeat(grid, start + beats * 60 / bpm));
        }
    }
    std::printf("clicks of 60 to 185 bpm, two phases each, %.0f s\n", seconds);
    tell("tempo: from the nearest whole step", lags, "steps");
    tell("the first click from the grid", first, "ms");
    tell("the last click from the grid", last, "ms");
    std::printf("  %-44s %5d\n", "heard as half or double", otherOctave);
}

/// The mix of the music alone.
AudioMixer::StereoSound musicOf(EditPlan plan, double duration)
{
    plan.narration.reset();
    plan.systemAudio.reset();
    plan.sfx.clear();
    return AudioMixer::mix(plan, duration, ".").value();
}

/// What ducking takes away, in decibels, of every quarter of a second that has one level.
void measureDucking(const EditPlan& plan, double duration)
{
    constexpr std::size_t kWindow = 11025;
    constexpr double kSettled = 0.5; // seconds after a step
    EditPlan plain = plan;
    plain.music->duckPoints.clear();
    const auto ducked = musicOf(plan, duration);
    const auto full = musicOf(plain, duration);
    std::vector<double> apart; // dB from what is planned
    std::vector<double> speech;
    for (std::size_t at = 0; at + kWindow <= full.left.size(); at += kWindow) {
        const double begin = static_cast<double>(at) / kRate;
        const double end = static_cast<double>(at + kWindow) / kRate;
        double planned = 0;
        bool isSteady = true;
        for (const DuckPoint& point : plan.music->duckPoints) {
            isSteady = isSteady && (point.tOut < begin - kSettled || point.tOut > end + kSettled);
            if (point.tOut <= begin)
                planned = point.gainDb;
        }
        const double loud = test::levelOf(full.left, at, at + kWindow);
        if (!isSteady || loud < 1e-3)
            continue;
        const double taken = 20 * std::log10(test::levelOf(ducked.left, at, at + kWindow) / loud);
        apart.push_back(std::abs(taken - planned));
        if (planned < -8)
            speech.push_back(taken);
    }
    tell("ducking: heard less planned", apart, "dB");
    tell("under speech", speech, "dB");
}

/// Some clicks, a pause of some seconds, and so on, for two minutes: a pause makes a cut.
SessionBundle clicksAndPauses(std::uint64_t seed)
{
    test::Random random(seed);
    SessionBundle session;
    session.meta = {
        .pixelWidth = 1920,
        .pixelHeight = 1080,
        .scaleFactor = 1,
        .nominalFPS = 60,
        .duration = 120};
    for (double t = 1; t < 118; t += random.uniform(3, 8)) {
        for (double end = t + random.uniform(1, 6); t < end; t += random.uniform(0.3, 1.2)) {
            const Vec2 place{random.uniform(0, 1920), random.uniform(0, 1080)};
            session.events.push_back({.t = t, .kind = EventKind::Click, .pos = place});
        }
    }
    return session;
}

/// A film's cuts, in its own time.
std::vector<double> cutsOf(const EditPlan& plan)
{
    const RemapCurve curve(plan.timeRemap);
    std::vector<double> cuts;
    for (std::size_t i = 0; i + 1 < plan.timeRemap.size(); ++i) {
        const double end = plan.timeRemap[i].sourceEnd;
        if (std::abs(plan.timeRemap[i + 1].sourceStart - end) > 0.01)
            cuts.push_back(curve.outputTime(end));
    }
    return cuts;
}

/// Milliseconds from a time to the nearest multiple of a period.
double offMultiple(double time, double period)
{
    return std::abs(time - std::round(time / period) * period) * 1000;
}

void measureCuts(const MusicLibrary::Track& track, const EditPlanner::MusicInfo& music)
{
    std::vector<double> unsnapped;
    std::vector<double> toGrid;
    std::vector<double> toKick; // of the track as it is: the first beat at 0
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        const SessionBundle session = clicksAndPauses(seed);
        EditPlanner::PlanInput input;
        input.events = session.events;
        input.meta = session.meta;
        for (const double cut : cutsOf(EditPlanner::plan(input)))
            unsnapped.push_back(offMultiple(cut, music.grid.period));
        input.music = music;
        const EditPlan plan = EditPlanner::plan(input);
        for (const double cut : cutsOf(plan)) {
            toGrid.push_back(offMultiple(cut, music.grid.period));
            const double inTrack = cut + plan.music->sourceOffset;
            if (inTrack < music.grid.duration)
                toKick.push_back(offMultiple(inTrack, 60 / track.bpm));
        }
    }
    const auto snapped = std::ranges::count_if(toGrid, [](double ms) { return ms < 10; });
    tell("a cut from the grid's beat, not snapped", unsnapped, "ms");
    tell("a cut from the grid's beat", toGrid, "ms");
    std::printf("  %-44s %5td\n", "of these on the beat, within 10 ms", snapped);
    tell("a cut from the track's own beat", toKick, "ms");
}

void measureTrack(const MusicLibrary::Track& track, const SessionBundle& spoken)
{
    const BeatGrid heard = BeatDetector::analyze(MusicLibrary::ensure(track));
    const EditPlanner::MusicInfo music = {
        .file = track.url().string(), .grid = heard, .start = 0, .end = 0};
    std::printf(
        "%s: %.0f bpm, heard as %.2f; the first beat at %.1f ms; the grid is %.0f ms off after a "
        "minute\n",
        track.name.c_str(),
        track.bpm,
        heard.bpm,
        heard.phase * 1000,
        std::abs(60 / track.bpm - heard.period) * track.bpm * 1000);
    measureCuts(track, music);
    EditPlanner::PlanInput input = richInput(spoken);
    input.music = music;
    measureDucking(EditPlanner::plan(input), 60);
}

void measure()
{
    const test::TemporaryFolder folder;
    setenv("XDG_DATA_HOME", folder.path().c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
    measureDetector(20);
    measureDetector(120);
    const SessionBundle session = humanSession(0.25);
    for (const MusicLibrary::Track& track : MusicLibrary::all())
        measureTrack(track, session);
}

} // namespace
} // namespace zento::bench

int main(int argc, char** argv)
{
    try {
        if (argc > 1) {
            for (const auto& track : zento::MusicLibrary::all())
                std::filesystem::copy_file(
                    zento::MusicLibrary::ensure(track),
                    std::filesystem::path(argv[1]) / (track.id + ".m4a"),
                    std::filesystem::copy_options::overwrite_existing);
            return 0;
        }
        zento::bench::measure();
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "music_bench: %s\n", error.what());
        return 1;
    }
}
