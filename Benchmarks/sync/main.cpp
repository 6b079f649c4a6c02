// Flashes the screen and beeps at the same instants of CLOCK_MONOTONIC, records that with `zento
// record`, and prints how far apart they lie in the recording:
//
//   sync_check ZENTO [SECONDS]
//
// Everything happens on a private desktop. A flash that a busy machine painted late counts from
// when it was painted. The flashes are the background of its screen, and the picture of a camera;
// the beeps are played to the default output, and to what a microphone hears.

#include "SoundStage/FakeCamera.h"
#include "SoundStage/PrivateSound.h"
#include "SoundStage/SoundPlayer.h"
#include "ThreadTimes.h"
#include "Tracks.h"
#include "Zento/Demo/PrivateDesktop.h"
#include "Zento/Demo/RootBackground.h"
#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCapture/Journal.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace zento {
namespace {

constexpr double kPeriod = 1; // seconds from one flash and beep to the next
constexpr double kFlashSeconds = 0.2;
constexpr double kCameraFrame = 1.0 / 30;

void adopt(const Environment& environment)
{
    for (const auto& [name, value] : environment) {
        setenv(name.c_str(), value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): no thread yet
    }
}

/// Until this second of CLOCK_MONOTONIC. False if a stop was requested first.
bool waitFor(double time, const std::stop_token& stop)
{
    const auto since = std::chrono::duration<double>(time);
    return sleepUntil(SteadyTime(std::chrono::duration_cast<SteadyTime::duration>(since)), stop);
}

/// How late each flash was painted, by the second of CLOCK_MONOTONIC it was due at.
using Lateness = std::map<double, double>;

void flashScreen(const std::string& display, Lateness& lateness, const std::stop_token& stop)
{
    constexpr VerticalGradient kWhite{0xFFFFFF, 0xFFFFFF};
    constexpr VerticalGradient kBlack{0x000000, 0x000000};
    const XConnection connection(display);
    for (double next = std::ceil(monotonicSeconds() / kPeriod) * kPeriod;; next += kPeriod) {
        if (!waitFor(next, stop)) {
            return;
        }
        lateness[next] = monotonicSeconds() - next;
        paintRootBackground(connection, kWhite);
        if (!waitFor(next + kFlashSeconds, stop)) {
            return;
        }
        paintRootBackground(connection, kBlack);
    }
}

/// A picture of one brightness, I420.
std::vector<std::uint8_t> cameraPicture(double time)
{
    const double since = time - std::floor(time / kPeriod) * kPeriod;
    constexpr std::size_t kPixels = std::size_t{1280} * 720;
    std::vector<std::uint8_t> bytes(kPixels, since < kFlashSeconds ? 235 : 16);
    bytes.resize(kPixels * 3 / 2, 128);
    return bytes;
}

struct Recorded {
    std::filesystem::path bundle;
    double epoch = 0;                      // seconds of CLOCK_MONOTONIC
    double ends = 0;                       // seconds that starting and stopping took together
    std::map<std::string, double> threads; // processor seconds
};

/// The recording that is there, complete or not.
std::filesystem::path bundleIn(const std::filesystem::path& home)
{
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
        if (entry.path().extension() == ".zento") {
            return entry.path();
        }
    }
    return {};
}

/// As the journal of a recording that runs tells it; 0 if it does not yet.
double epochOf(const std::filesystem::path& bundle)
{
    try {
        return decodeJournal(readFile(journalURL(bundle))).epoch.value_or(0);
    } catch (const Error&) {
        return 0;
    }
}

Recorded record(PrivateDesktop& desktop, const std::string& zento, double seconds)
{
    const double begin = monotonicSeconds();
    const pid_t process = desktop.start(
        {zento,
         "record",
         "--microphone",
         "--camera",
         "--system-audio",
         "--seconds",
         std::to_string(seconds)});
    Recorded recorded;
    while (ProcessGroup::isRunning(process)) {
        const auto times = threadTimes(process);
        if (!times.empty() && times.size() + 2 >= recorded.threads.size()) {
            recorded.threads = times;
        }
        sleepFor(monotonicSeconds() - begin < seconds ? 0.2 : 0.005, {});
        if (recorded.epoch == 0) {
            recorded.bundle = bundleIn(desktop.home().path());
            recorded.epoch = epochOf(recorded.bundle);
        }
    }
    recorded.ends = monotonicSeconds() - begin - seconds;
    return recorded;
}

/// When the flashes of the screen would lie in its movie had each been painted in time.
std::vector<double> punctualFlashes(const Recorded& recorded, const Lateness& lateness)
{
    auto result = flashes(recorded.bundle / "screen.mov");
    for (double& flash : result) {
        const double due = std::round((recorded.epoch + flash) / kPeriod) * kPeriod;
        const auto found = lateness.find(due);
        flash -= found == lateness.end() ? 0 : found->second;
    }
    return result;
}

/// How much later than each flash of the screen the nearest event of a track comes, by the flash.
std::map<double, double> distances(
    const std::vector<double>& screen,
    const std::vector<double>& track,
    std::optional<double> offset)
{
    std::map<double, double> result;
    for (const double flash : screen) {
        for (const double event : track) {
            const double distance = event + offset.value_or(0) - flash;
            if (std::abs(distance) < kPeriod / 2) {
                result[flash] = distance;
            }
        }
    }
    return result;
}

struct Limits {
    double least = 0; // seconds
    double most = 0;
};

/// Prints a row a part of the recording. False if there is nothing, or something beyond the limits.
bool report(
    const char* name, const std::map<double, double>& found, double duration, const Limits& limits)
{
    constexpr double kPart = 10; // seconds
    bool isGood = true;
    for (const auto& [part, from] :
         {std::pair{"start", 0.0},
          {"middle", duration / 2 - kPart / 2},
          {"end", duration - kPart}}) {
        double least = 1;
        double most = -1;
        double sum = 0;
        int count = 0;
        for (const auto& [time, distance] : found) {
            if (time >= from && time < from + kPart) {
                least = std::min(least, distance);
                most = std::max(most, distance);
                sum += distance;
                ++count;
            }
        }
        const bool isWithin = count > 0 && least >= limits.least && most <= limits.most;
        isGood = isGood && isWithin;
        std::printf(
            "%-13s %-7s %5d %9.2f %9.2f %9.2f   %+.0f .. %+.0f %s\n",
            name,
            part,
            count,
            1000 * (count > 0 ? sum / count : 0),
            1000 * least,
            1000 * most,
            1000 * limits.least,
            1000 * limits.most,
            isWithin ? "ok" : "BEYOND");
    }
    return isGood;
}

/// How far a track's events lie from whole periods after its first one: that of the track alone,
/// also on a machine too busy to show a flash in time.
void reportSteadiness(const char* name, const std::vector<double>& events)
{
    double least = 0;
    double most = 0;
    double last = 0;
    for (const double event : events) {
        const double since = event - events.front();
        last = since - std::round(since / kPeriod) * kPeriod;
        least = std::min(least, last);
        most = std::max(most, last);
    }
    std::printf(
        "%-13s %5zu %9.2f %9.2f %9.2f\n",
        name,
        events.size(),
        1000 * least,
        1000 * most,
        1000 * last);
}

bool analyse(const Recorded& recorded, const Lateness& lateness, double seconds)
{
    const SessionBundle bundle = SessionBundle::load(recorded.bundle);
    const auto screen = punctualFlashes(recorded, lateness);
    std::printf(
        "\n%.0f s recorded, %zu flashes. Milliseconds from a flash of the screen to what belongs "
        "to "
        "it:\n%-13s %-7s %5s %9s %9s %9s   limits\n",
        bundle.meta.duration,
        screen.size(),
        "track",
        "part",
        "count",
        "mean",
        "least",
        "most");
    constexpr Limits kSound{-0.005, 0.015};
    constexpr Limits kCamera{-kCameraFrame, kCameraFrame};
    bool isGood = report(
        "system audio",
        distances(screen, beeps(bundle.systemAudioURL()), bundle.meta.systemAudioOffset),
        bundle.meta.duration,
        kSound);
    isGood &= report(
        "microphone",
        distances(screen, beeps(bundle.narrationURL()), bundle.meta.narrationOffset),
        bundle.meta.duration,
        kSound);
    isGood &= report(
        "camera",
        distances(screen, flashes(bundle.webcamURL()), bundle.meta.webcamOffset),
        bundle.meta.duration,
        kCamera);
    std::printf(
        "\nmilliseconds of each track from whole seconds after its own first event:\n"
        "%-13s %5s %9s %9s %9s\n",
        "track",
        "count",
        "least",
        "most",
        "last");
    reportSteadiness("screen", screen);
    reportSteadiness("system audio", beeps(bundle.systemAudioURL()));
    reportSteadiness("microphone", beeps(bundle.narrationURL()));
    reportSteadiness("camera", flashes(bundle.webcamURL()));
    std::printf("\nstarting and stopping took %.2f s together\n", recorded.ends);
    std::printf("\nprocessor time by thread, in hundredths of a core:\n");
    for (const auto& [name, time] : recorded.threads) {
        std::printf("  %-16s %6.2f\n", name.c_str(), 100 * time / seconds);
    }
    return isGood;
}

int run(const std::string& zento, double seconds)
{
    PrivateDesktop desktop({1280, 720});
    adopt(desktop.environment());
    test::PrivateSound sound(desktop);
    sound.plugInMicrophone("mic");
    const auto beep = [](double time) { return test::beepsAt(time, kPeriod); };
    const test::SoundPlayer speakers(test::PrivateSound::kSpeakers, beep);
    const test::SoundPlayer voice("mic-feed", beep);
    const test::FakeCamera camera(
        "camera", {}, [](int, double time) { return cameraPicture(time); });
    Lateness lateness;
    std::jthread screen(
        [&](const std::stop_token& stop) { flashScreen(desktop.display(), lateness, stop); });
    const Recorded recorded = record(desktop, zento, seconds);
    screen.request_stop();
    screen.join();
    return analyse(recorded, lateness, seconds) ? 0 : 1;
}

} // namespace
} // namespace zento

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: sync_check ZENTO [SECONDS]\n");
        return 2;
    }
    try {
        return zento::run(argv[1], argc > 2 ? std::strtod(argv[2], nullptr) : 120);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
