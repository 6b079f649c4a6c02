// How the application feels: its start, and the longest time its main thread was away.
//
//     application_bench          the limits, on a display of its own
//     application_bench --stay   what that runs in a process of its own; see Visit.h
//     application_bench listening   only what it is like while a narration is listened to

#include "TestSupport/NumberedMovie.h"
#include "Visit.h"
#include "Zento/Demo/PrivateDesktop.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoMedia/WavWriter.h"
#include "capture/Animation.h"
#include "speech/Material.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <limits>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

namespace zento::bench {

namespace {

/// Recordings with a picture each, a second apart.
void fillLibrary(const std::filesystem::path& folder, int count)
{
    std::filesystem::create_directories(folder);
    const auto movie = folder / "picture.mov";
    constexpr VideoSize kSize{640, 360};
    test::writeNumberedRecording(movie, kSize, test::countedFrames(0, 15, 60));
    SessionMeta meta{
        .pixelWidth = kSize.width,
        .pixelHeight = kSize.height,
        .scaleFactor = 1,
        .nominalFPS = 60,
        .duration = 0.25};
    for (int i = 0; i < count; ++i) {
        const auto bundle = folder / ("recording " + std::to_string(i) + ".zento");
        std::filesystem::create_directory(bundle);
        std::filesystem::create_hard_link(movie, bundle / "screen.mov");
        writeFile(bundle / "events.jsonl", "");
        meta.title = "Recording " + std::to_string(i);
        writeFile(bundle / "meta.json", encodeMeta(meta));
    }
}

/// A stage with that many recordings, and what the visit to it printed.
std::string visited(const std::string& program, const std::string& visit, int recordings)
{
    PrivateDesktop stage({1600, 1000});
    constexpr double kShare = 0.3; // of the screen, in motion while it is recorded
    const Animation animation(stage.display(), 1600, 1000, kShare);
    const auto& home = stage.home();
    fillLibrary(home.path() / "Videos/Zento", recordings);
    home.writeFile(".config/Zento/settings.json", R"({"countdownSeconds": 0})");
    home.writeFile(".config/Zento/Zento.ini", "[General]\nwelcomeShown=true\n");
    // The first start compiles what the later ones find in the cache.
    for (int run = 0; run < (visit == "--start" ? 4 : 1); ++run) {
        const auto begun = std::chrono::steady_clock::now().time_since_epoch();
        const pid_t child = stage.start(
            {"/usr/bin/env",
             "ZENTO_BENCH_BEGUN=" + std::to_string(std::chrono::nanoseconds(begun).count()),
             program,
             visit});
        while (ProcessGroup::isRunning(child)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
    return readFile(stage.log());
}

/// A recording of ten minutes in which somebody speaks.
std::filesystem::path addNarrated(const std::filesystem::path& folder)
{
    constexpr double kSeconds = 600;
    constexpr VideoSize kSize{640, 360};
    constexpr double kRate = 2;
    const auto bundle = folder / "narrated.zento";
    std::filesystem::create_directory(bundle);
    test::writeNumberedRecording(
        bundle / "screen.mov",
        kSize,
        test::countedFrames(0, static_cast<int>(kSeconds * kRate), kRate));
    SessionMeta meta{
        .pixelWidth = kSize.width,
        .pixelHeight = kSize.height,
        .scaleFactor = 1,
        .nominalFPS = 60,
        .duration = kSeconds};
    meta.title = "Narrated";
    meta.narrationOffset = 0;
    std::string events;
    for (int second = 1; second < static_cast<int>(kSeconds); second += 4) {
        events += R"({"t":)" + std::to_string(second)
                  + R"(,"kind":"click","pos":{"x":200,"y":150},"button":0})" + '\n';
    }
    writeFile(bundle / "events.jsonl", events);
    writeFile(bundle / "meta.json", encodeMeta(meta));
    const SpokenMaterial voice = repeated(shownProgram(Room::Quiet), kSeconds);
    WavWriter writer(bundle / "narration.wav", {.sampleRate = kSpeechRate, .channelCount = 1});
    writer.append(std::array<std::span<const float>, 1>{voice.sound});
    writer.finish();
    return bundle;
}

/// What a visit to a stage with that recording printed.
std::string visitedWhileListening(const std::string& program)
{
    PrivateDesktop stage({1600, 1000});
    const auto& home = stage.home();
    fillLibrary(home.path() / "Videos/Zento", 20);
    const auto recording = addNarrated(home.path() / "Videos/Zento");
    home.writeFile(".config/Zento/Zento.ini", "[General]\nwelcomeShown=true\n");
    const pid_t child = stage.start(
        {"/usr/bin/env", "ZENTO_BENCH_RECORDING=" + recording.string(), program, "--listening"});
    while (ProcessGroup::isRunning(child)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return readFile(stage.log());
}

void tellStarts(const std::string& printed)
{
    std::istringstream lines(printed);
    double first = 0;
    double best = std::numeric_limits<double>::infinity();
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("start ")) {
            const double seconds = std::stod(line.substr(6));
            first = first == 0 ? seconds : first;
            best = std::min(best, seconds);
        }
    }
    std::printf("start with 200 recordings            %6.2f s    limit 1 s\n", best);
    std::printf("  the very first, nothing cached     %6.2f s\n", first);
}

void tellPauses(const std::string& printed)
{
    std::istringstream lines(printed);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        double took = 0;
        double pause = 0;
        double work = 0;
        double delayed = 0;
        if (words >> name >> took >> pause >> work >> delayed) {
            std::printf(
                "longest pause while %-10s %5.1f s %6.1f ms   limit 50 ms; own work %.1f, no core "
                "%.1f\n",
                name.c_str(),
                took,
                pause,
                work,
                delayed);
        } else {
            std::fprintf(stderr, "%s\n", line.c_str());
        }
    }
}

int run(int argc, char** argv)
{
    const std::string_view visit = argc > 1 ? argv[1] : "";
    if (visit == "--start") {
        return visitStart(argc, argv);
    }
    if (visit == "--stay") {
        return visitPauses(argc, argv);
    }
    if (visit == "--listening") {
        return visitListening(argc, argv);
    }
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    if (visit == "listening") {
        tellPauses(visitedWhileListening(program));
        return 0;
    }
    tellStarts(visited(program, "--start", 200));
    tellPauses(visited(program, "--stay", 2000));
    tellPauses(visitedWhileListening(program));
    return 0;
}

} // namespace

} // namespace zento::bench

int main(int argc, char** argv)
{
    try {
        return zento::bench::run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "application_bench: %s\n", error.what());
        return 1;
    }
}
