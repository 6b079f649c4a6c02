// The sound of a long film and the beats of a song, against what a user is ready to wait.

#include "TestSupport/Random.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoEngine/BeatDetector.h"
#include "ZentoMedia/AacWriter.h"
#include "ZentoRender/AudioMixer.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

namespace zento::bench {

namespace {

constexpr double kHour = 3600;
constexpr int kSongSeconds = 240;

template <typename Work>
double seconds(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

/// A beat of noise under a chord, not the same twice.
test::Channels song(int lengthSeconds)
{
    const auto count = static_cast<std::size_t>(lengthSeconds) * 44100;
    test::Random random(1);
    test::Channels sides(2, std::vector<float>(count));
    const auto low = test::tone(110, 44100, count);
    const auto high = test::tone(1661, 44100, count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto decay = static_cast<double>(22050 - i % 22050) / 22050;
        const auto hit = static_cast<float>(random.uniform(-0.4, 0.4) * decay * decay * decay);
        sides[0][i] = low[i] * 0.5F + high[i] * 0.2F + hit;
        sides[1][i] = low[i] * 0.5F - high[i] * 0.2F + hit;
    }
    return sides;
}

/// A song as a file, `times` times over.
void writeSong(const std::filesystem::path& path, const test::Channels& sides, int times)
{
    AacWriter writer(path, {});
    for (int i = 0; i < times; ++i)
        writer.append(sides[0], sides[1]);
    writer.finish();
}

/// A hour with 400 stretches, 200 of them faster, a click every second and music that steps back.
EditPlan hourPlan(const std::filesystem::path& folder)
{
    EditPlan plan;
    plan.music = MusicPlan{
        .file = (folder / "music.m4a").string(), .gainDb = -11, .fadeIn = 0.4, .fadeOut = 1.8};
    plan.narration = NarrationPlan{(folder / "narration.wav").string(), 0.2, -2};
    plan.systemAudio = NarrationPlan{(folder / "system.wav").string(), -0.1, -6};
    for (int i = 0; i < 200; ++i) {
        const double start = i * 18.0;
        plan.timeRemap.push_back({start, start + 12, 1});
        plan.timeRemap.push_back({start + 12, start + 18, 2});
        plan.music->duckPoints.push_back({i * 15.0, -9});
        plan.music->duckPoints.push_back({i * 15.0 + 7.3, 0});
    }
    for (int i = 0; i < 3600; ++i)
        plan.sfx.push_back({i + 0.37, i % 10 == 0 ? "whoosh" : "click", 1});
    return plan;
}

void report(const char* what, double value, double limit)
{
    std::printf(
        "  %-38s %8.2f  limit %6.1f  %5.2f of it  %s\n",
        what,
        value,
        limit,
        value / limit,
        value <= limit ? "ok" : "OVER");
}

void measureBeats(const std::filesystem::path& folder, const test::Channels& sides)
{
    writeSong(folder / "song.m4a", sides, 1);
    test::writeWav(folder / "song.wav", 44100, sides);
    BeatGrid grid;
    for (const char* name : {"song.m4a", "song.wav"}) {
        BeatDetector::MonoSound sound;
        const double load = seconds([&] { sound = BeatDetector::loadMono(folder / name); });
        const double analyze =
            seconds([&] { grid = BeatDetector::analyze(sound.samples, sound.sampleRate); });
        std::printf("%s of four minutes: load %.3f s, analyse %.3f s\n", name, load, analyze);
        report("beats of four minutes, s", load + analyze, 1);
    }
    std::printf("  (%.2f beats per minute)\n", grid.bpm);
}

void measureHour(const std::filesystem::path& folder, const test::Channels& sides)
{
    constexpr int kTimes = 3600 / kSongSeconds;
    const double writing = seconds([&] { writeSong(folder / "music.m4a", sides, kTimes); });
    constexpr auto kLength = static_cast<std::size_t>(kHour) * 48000;
    test::writeWav(folder / "narration.wav", 48000, {test::tone(220, 48000, kLength)});
    {
        const auto tone = test::tone(440, 48000, kLength);
        test::writeWav(folder / "system.wav", 48000, {tone, tone});
    }
    const EditPlan plan = hourPlan(folder);
    std::size_t samples = 0;
    const double mixing =
        seconds([&] { samples = AudioMixer::mix(plan, kHour, folder)->left.size(); });
    std::printf("an hour: %zu samples; AAC encoding alone %.1f s\n", samples, writing);
    report("mix of an hour with decoding, s", mixing, 20);
}

void run()
{
    const test::TemporaryFolder folder;
    const test::Channels sides = song(kSongSeconds);
    measureBeats(folder.path(), sides);
    measureHour(folder.path(), sides);
    std::printf("  (peak memory, this program's own sounds included: %.0f MB)\n", peakMegabytes());
}

} // namespace

} // namespace zento::bench

int main()
{
    try {
        zento::bench::run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "sound_bench: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
