// What a recording costs while it runs: processor time by thread, frames, memory, the time of stop.
//
//     capture_bench                       the limits, each as the least of three runs
//     capture_bench SECONDS WxH SHARE     one run with that part of the screen in motion

#include "Animation.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Demo/PrivateDesktop.h"
#include "ZentoCapture/CaptureSession.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

namespace zento::bench {

namespace {

using Clock = std::chrono::steady_clock;

struct Setting {
    double seconds = 20;
    DesktopSize size;
    double share = 0.3; // of the screen in motion; 0: a still one
};

struct Cost {
    std::map<std::string, double> cores; // by the name of the thread
    int frames = 0;
    int dropped = 0;
    double frameRate = 0;
    double stopSeconds = 0;
    double megabytesEarly = 0; // of memory, after 5 s
    double megabytesLate = 0;  // at the end
    double movieMegabytes = 0;
};

/// Seconds of processor time that each thread of this process has had so far.
std::map<std::string, double> threadTimes()
{
    std::map<std::string, double> times;
    const auto ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        std::string line;
        std::getline(std::ifstream(task.path() / "stat"), line);
        std::istringstream fields(line.substr(line.rfind(')') + 1));
        constexpr int kBeforeTimes = 11; // fields between the name and the two times
        std::string skipped;
        for (int i = 0; i < kBeforeTimes; ++i) {
            fields >> skipped;
        }
        double user = 0;
        double system = 0;
        fields >> user >> system;
        times[name] += (user + system) / ticks;
    }
    return times;
}

double residentMegabytes()
{
    double total = 0;
    double resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

void waitUntil(Clock::time_point time)
{
    std::this_thread::sleep_until(time);
}

Cost measured(const Setting& setting)
{
    PrivateDesktop stage(setting.size);
    const auto desktop = openDesktop(stage.display());
    std::optional<Animation> animation;
    if (setting.share > 0) {
        animation.emplace(stage.display(), setting.size.width, setting.size.height, setting.share);
    }
    const test::TemporaryFolder folder;
    CaptureSession session(folder / "bench.zento", *desktop);
    session.start();
    constexpr auto kWarmUp = std::chrono::seconds(2);
    const auto begin = Clock::now() + kWarmUp;
    waitUntil(begin);
    const auto before = threadTimes();
    const int framesBefore = session.frameCount();
    const auto end = begin
                     + std::chrono::duration_cast<Clock::duration>(
                         std::chrono::duration<double>(setting.seconds));
    Cost cost;
    waitUntil(std::min(end, begin + std::chrono::seconds(5)));
    cost.megabytesEarly = residentMegabytes();
    waitUntil(end);
    for (const auto& [name, time] : threadTimes()) {
        const auto found = before.find(name);
        const double spent = time - (found == before.end() ? 0 : found->second);
        cost.cores[name] = spent / setting.seconds;
    }
    cost.megabytesLate = residentMegabytes();
    cost.frames = session.frameCount();
    cost.dropped = session.droppedFrameCount();
    cost.frameRate = (cost.frames - framesBefore) / setting.seconds;
    const auto stopping = Clock::now();
    session.stop();
    cost.stopSeconds = std::chrono::duration<double>(Clock::now() - stopping).count();
    cost.movieMegabytes =
        static_cast<double>(file_size(folder / "bench.zento/screen.mov")) / (1 << 20);
    return cost;
}

/// Without the stage, and without the encoder where `withEncoder` is false: its threads have this
/// program's name, as has the main one, which sleeps.
double cores(const Cost& cost, bool withEncoder)
{
    double sum = 0;
    for (const auto& [name, share] : cost.cores) {
        if (name.starts_with("capture.") || (withEncoder && name != "stage")) {
            sum += share;
        }
    }
    return sum;
}

void print(const Setting& setting, const Cost& cost)
{
    std::printf(
        "%d x %d, %.0f %% in motion, %.0f s: %.1f frames/s, %d dropped of %d, stop %.3f s, memory "
        "%.0f -> %.0f MiB, movie %.0f MiB\n",
        setting.size.width,
        setting.size.height,
        setting.share * 100,
        setting.seconds,
        cost.frameRate,
        cost.dropped,
        cost.frames + cost.dropped,
        cost.stopSeconds,
        cost.megabytesEarly,
        cost.megabytesLate,
        cost.movieMegabytes);
    for (const auto& [name, share] : cost.cores) {
        if (share >= 0.0005) {
            std::printf("    %-16s %6.3f cores\n", name.c_str(), share);
        }
    }
}

void compare(const char* what, const Setting& setting, bool withEncoder, double limit)
{
    double least = 1e9;
    for (int run = 0; run < 3; ++run) {
        const Cost cost = measured(setting);
        print(setting, cost);
        least = std::min(least, cores(cost, withEncoder));
    }
    std::printf(
        "%-44s %6.3f cores, limit %.2f: %s\n", what, least, limit, least <= limit ? "ok" : "OVER");
    std::fflush(stdout);
}

void compareAll()
{
    compare("capture besides encoding, 30 % in motion", {}, /*withEncoder=*/false, 0.35);
    compare("a still screen in all", {.share = 0}, /*withEncoder=*/true, 0.03);
    for (const DesktopSize size : {DesktopSize{1920, 1080}, DesktopSize{2880, 1800}}) {
        const Setting setting{.size = size, .share = 1};
        print(setting, measured(setting));
    }
}

} // namespace

} // namespace zento::bench

int main(int count, char** words)
{
    using namespace zento::bench;
    try {
        if (count != 4) {
            compareAll();
            return 0;
        }
        Setting setting{.seconds = std::stod(words[1]), .share = std::stod(words[3])};
        const std::string size = words[2];
        setting.size = {std::stoi(size), std::stoi(size.substr(size.find('x') + 1))};
        print(setting, measured(setting));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
